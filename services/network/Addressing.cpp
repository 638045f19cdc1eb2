#include "services/network/Addressing.h"

namespace network {

void Addressing::change(const std::string &name, Links::Edit edit, Done done)
{
    const Device *device = m_network.find(name);
    if (device == nullptr || !device->isPresent())
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
        [now](NMConnection *profile) {
            if (!usesDhcp(profile))
                return true;
            useStatic(profile, os::checkAddress(now.address, now.mask, now.gateway));
            setServers(profile, {now.preferredDns, now.alternateDns});
            return true;
        },
        std::move(done));
}

void Addressing::setAddress(const std::string &device, const std::string &address,
                            const std::string &mask, const std::string &gateway, Done done)
{
    const auto checked = os::checkAddress(address, mask, gateway);
    change(
        device,
        [checked](NMConnection *profile) {
            if (checked)
                useStatic(profile, checked);
            return checked.has_value();
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
            return isRight && setServers(profile, servers);
        },
        std::move(done));
}

} // namespace network
