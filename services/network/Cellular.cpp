#include "services/network/Cellular.h"

#include <tuple>

namespace network {
namespace {

// NM_AGENT_MANAGER_ERROR, whose function libnm 1.42 declares for C alone.
GQuark secretsErrors()
{
    return g_quark_from_static_string("nm-agent-manager-error-quark");
}

} // namespace

bool operator==(const ModemStatus &one, const ModemStatus &other)
{
    const auto fields = [](const ModemStatus &status) {
        return std::tie(status.csq, status.iccid, status.imei, status.network, status.isAttached);
    };
    return fields(one) == fields(other);
}

Cellular::Cellular(Network &network, const Modems &modems,
                   std::function<void(const ModemStatus &)> told)
    : m_network(network), m_modems(modems), m_told(std::move(told)), m_burst([this] { tell(); })
{
}

const Device *Cellular::modem() const
{
    const Device *device = m_network.findKind(Kind::Modem);
    return device != nullptr && device->isKnown() ? device : nullptr;
}

Outcome Cellular::status(ModemStatus &status)
{
    const Device *device = modem();
    if (device == nullptr) {
        m_last = {};
        return Outcome::NoDevice;
    }
    if (device->isPresent() && m_modems.isRunning()) {
        const auto found = m_modems.all().find(toString(nm_device_get_udi(device->get())));
        const Modem known = found == m_modems.all().end() ? Modem() : found->second;
        m_last = {known.csq, known.iccid, known.imei, known.operatorName, known.registered};
    }
    status = m_last;
    return Outcome::Done;
}

void Cellular::tell()
{
    ModemStatus now;
    const bool isThere = status(now) == Outcome::Done;
    if (isThere && !(m_lastTold && *m_lastTold == now))
        m_told(now);
    m_lastTold = isThere ? std::optional(now) : std::nullopt;
}

void Cellular::apn(std::function<void(Outcome outcome, const Apn &apn)> told)
{
    const Device *device = modem();
    if (device == nullptr)
        return told(Outcome::NoDevice, {});
    NMRemoteConnection *profile = m_network.profileOf(*device);
    if (profile == nullptr)
        return told(Outcome::Failed, {});
    const char *setting = apnSecretSetting(NM_CONNECTION(profile));
    if (setting == nullptr)
        return told(Outcome::Done, readApn(NM_CONNECTION(profile)));
    nm_remote_connection_get_secrets_async(
        profile, setting, m_calls.cancellable(), Calls::answer,
        m_calls.expect([told = std::move(told), setting](GObject *source, GAsyncResult *result) {
            Error error;
            const Variant secrets(nm_remote_connection_get_secrets_finish(
                NM_REMOTE_CONNECTION(source), result, &error));
            const bool hasNone = error.is(secretsErrors(), NM_AGENT_MANAGER_ERROR_NO_SECRETS);
            const Object<NMConnection> known(nm_simple_connection_new_clone(NM_CONNECTION(source)));
            if (secrets)
                nm_connection_update_secrets(known.get(), setting, secrets.get(), nullptr);
            told(secrets || hasNone ? Outcome::Done : Outcome::Failed, readApn(known.get()));
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
