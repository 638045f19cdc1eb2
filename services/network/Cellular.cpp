#include "services/network/Cellular.h"

namespace network {
namespace {

using namespace std::chrono_literals;

constexpr auto BURST_TIME = 40ms;

} // namespace

Cellular::Cellular(Network &network, const Modems &modems, std::function<void()> changed)
    : m_network(network), m_modems(modems), m_changed(std::move(changed))
{
}

const Device *Cellular::modem() const
{
    const Device *device = m_network.findKind(Kind::Modem);
    return device != nullptr && device->isPresent() ? device : nullptr;
}

Outcome Cellular::status(ModemStatus &status) const
{
    const Device *device = modem();
    if (device == nullptr)
        return Outcome::NoDevice;
    const auto found = m_modems.all().find(toString(nm_device_get_udi(device->get())));
    if (found == m_modems.all().end())
        return Outcome::Done;
    const Modem &known = found->second;
    status = {known.csq, known.iccid, known.imei, known.operatorName, known.registered};
    return Outcome::Done;
}

void Cellular::modemChanged()
{
    if (!m_burst.isRunning())
        m_burst.start(BURST_TIME, m_changed);
}

void Cellular::apn(std::function<void(Outcome outcome, const Apn &apn)> told)
{
    const Device *device = modem();
    if (device == nullptr)
        return told(Outcome::NoDevice, {});
    NMRemoteConnection *profile = m_network.profileOf(*device);
    if (profile == nullptr)
        return told(Outcome::Done, {});
    const char *setting = apnSecretSetting(NM_CONNECTION(profile));
    if (setting == nullptr)
        return told(Outcome::Done, readApn(NM_CONNECTION(profile)));
    nm_remote_connection_get_secrets_async(
        profile, setting, m_calls.cancellable(), Calls::answer,
        m_calls.expect([told = std::move(told), setting](GObject *source, GAsyncResult *result) {
            const Variant secrets(nm_remote_connection_get_secrets_finish(
                NM_REMOTE_CONNECTION(source), result, nullptr));
            const Object<NMConnection> known(nm_simple_connection_new_clone(NM_CONNECTION(source)));
            if (secrets)
                nm_connection_update_secrets(known.get(), setting, secrets.get(), nullptr);
            told(Outcome::Done, readApn(known.get()));
        }));
}

void Cellular::setApn(const Apn &apn, Done done)
{
    const Device *device = modem();
    if (device == nullptr)
        return done(Outcome::NoDevice);
    m_network.change(
        *device, [apn](NMConnection *profile) { return applyApn(profile, apn); }, std::move(done));
}

GVariant *toVariant(const ModemStatus &status)
{
    return g_variant_new("(isssb)", status.csq, asText(status.iccid).c_str(),
                         asText(status.imei).c_str(), asText(status.network).c_str(),
                         gboolean{status.isAttached});
}

GVariant *toVariant(const Apn &apn)
{
    return g_variant_new("(ssssb)", asText(apn.name).c_str(), asText(apn.auth).c_str(),
                         asText(apn.user).c_str(), asText(apn.password).c_str(), gboolean{apn.own});
}

Apn toApn(GVariant *told)
{
    const char *name = "";
    const char *auth = "";
    const char *user = "";
    const char *password = "";
    gboolean own = FALSE;
    g_variant_get(told, "(&s&s&s&sb)", &name, &auth, &user, &password, &own);
    return {name, auth, user, password, own != FALSE};
}

} // namespace network
