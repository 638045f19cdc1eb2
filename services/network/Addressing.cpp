#include "services/network/Addressing.h"

namespace network {
namespace {

// Those in force, which may be the lease's.
void keepServers(NMConnection *profile, const Record &now)
{
    if (!now.address.empty())
        setServers(profile, {now.preferredDns, now.alternateDns});
}

// Some servers give a gateway that is not of their network: the address is kept without it. False
// for a lease that no device can have as its own address.
bool keepLease(NMConnection *profile, const Record &now)
{
    auto kept = os::checkAddress(now.address, now.mask, now.gateway);
    if (!kept)
        kept = os::checkAddress(now.address, now.mask, "");
    keepServers(profile, now);
    useStatic(profile, kept);
    return kept || now.address.empty();
}

} // namespace

void Addressing::change(const std::string &name, Links::Edit edit, Done done)
{
    const Device *device = m_network.find(name);
    if (device == nullptr || !device->isKnown())
        return done(Outcome::NoDevice);
    m_network.change(*device, std::move(edit), std::move(done));
}

void Addressing::useDhcp(const std::string &device, Done done)
{
    change(
        device,
        [](NMConnection *profile) {
            network::useDhcp(profile);
            return true;
        },
        std::move(done));
}

void Addressing::keepAddress(const std::string &name, Done done)
{
    Record now;
    if (const Outcome outcome = m_network.record(name, now); outcome != Outcome::Done)
        return done(outcome);
    change(
        name,
        [now](NMConnection *profile) { return !usesDhcp(profile) || keepLease(profile, now); },
        std::move(done));
}

void Addressing::setAddress(const std::string &name, const std::string &address,
                            const std::string &mask, const std::string &gateway, Done done)
{
    Record now;
    if (const Outcome outcome = m_network.record(name, now); outcome != Outcome::Done)
        return done(outcome);
    const auto checked = os::checkAddress(address, mask, gateway);
    change(
        name,
        [checked, now](NMConnection *profile) {
            if (!checked)
                return false;
            if (usesDhcp(profile))
                keepServers(profile, now);
            useStatic(profile, checked);
            return true;
        },
        std::move(done));
}

void Addressing::setDns(const std::string &device, const Servers &servers, Done done)
{
    const bool isRight =
        os::isServerOrEmpty(servers.preferred) && os::isServerOrEmpty(servers.alternate);
    change(
        device,
        [isRight, servers](NMConnection *profile) {
            if (isRight)
                setServers(profile, servers);
            return isRight;
        },
        std::move(done));
}

} // namespace network
