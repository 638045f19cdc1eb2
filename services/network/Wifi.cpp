#include "services/network/Wifi.h"

#include "services/common/Journal.h"
#include "services/network/Profile.h"

namespace network {
namespace {

using namespace std::chrono_literals;

// The program gives a join up after 15 s.
constexpr auto JOIN_TIME = 14s;
// The program asks for the state 16 s after the join at the latest.
constexpr auto FAILURE_TIME = 20s;
// NetworkManager gives a network up for ever when a weak signal has made the password look wrong.
constexpr auto REJOIN_TIME = 30s;

constexpr std::size_t LONGEST_NAME = 32; // bytes, IEEE 802.11

Variant volatileOptions()
{
    GVariantDict options;
    g_variant_dict_init(&options, nullptr);
    g_variant_dict_insert(&options, "persist", "s", "volatile");
    return Variant(g_variant_ref_sink(g_variant_dict_end(&options)));
}

} // namespace

Wifi::Wifi(Links &links, const Device &device, std::function<void()> changed)
    : m_links(links), m_device(device), m_changed(std::move(changed))
{
}

Outcome Wifi::networks(std::vector<WifiNetwork> &found)
{
    if (!m_device.isPresent())
        return Outcome::NoDevice;
    if (!m_device.isOn())
        return Outcome::Failed;
    auto *device = NM_DEVICE_WIFI(m_device.get());
    found = networksOf(stationsOf(device));
    // NetworkManager refuses one that follows too soon.
    nm_device_wifi_request_scan_async(device, m_calls.cancellable(), Calls::answer,
                                      m_calls.expect([](GObject *source, GAsyncResult *result) {
                                          nm_device_wifi_request_scan_finish(NM_DEVICE_WIFI(source),
                                                                             result, nullptr);
                                      }));
    return Outcome::Done;
}

WifiState Wifi::state() const
{
    if (!m_device.isOn() || m_device.state() < NM_DEVICE_STATE_DISCONNECTED)
        return WifiState::Off;
    if (m_joining)
        return WifiState::Connecting;
    if (m_failed)
        return WifiState::Failed;
    if (m_device.isActive())
        return WifiState::Connected;
    if (m_device.state() >= NM_DEVICE_STATE_PREPARE &&
        m_device.state() <= NM_DEVICE_STATE_SECONDARIES)
        return WifiState::Connecting;
    return m_links.profileOf(m_device) == nullptr ? WifiState::Idle : WifiState::Disconnected;
}

WifiLogin Wifi::loginOf(NMConnection *profile) const
{
    return {networkName(profile), networkPassword(profile), securityOf(profile), false};
}

void Wifi::status(const std::function<void(const WifiStatus &)> &told)
{
    WifiStatus status;
    status.state = state();
    if (NMAccessPoint *station = m_device.isActive() ? nm_device_wifi_get_active_access_point(
                                                           NM_DEVICE_WIFI(m_device.get()))
                                                     : nullptr)
        status.level = toStation(station).level;
    NMRemoteConnection *profile = m_links.profileOf(m_device);
    if (m_joining || m_failed || profile == nullptr) {
        status.login = m_wanted;
        return told(status);
    }
    status.login = loginOf(NM_CONNECTION(profile));
    if (status.login.security < WPA || !status.login.password.empty())
        return told(status);
    nm_remote_connection_get_secrets_async(
        profile, NM_SETTING_WIRELESS_SECURITY_SETTING_NAME, m_calls.cancellable(), Calls::answer,
        m_calls.expect([this, status, told](GObject *source, GAsyncResult *result) mutable {
            const Variant secrets(nm_remote_connection_get_secrets_finish(
                NM_REMOTE_CONNECTION(source), result, nullptr));
            const Object<NMConnection> known(nm_simple_connection_new_clone(NM_CONNECTION(source)));
            if (secrets &&
                nm_connection_update_secrets(known.get(), NM_SETTING_WIRELESS_SECURITY_SETTING_NAME,
                                             secrets.get(), nullptr) != FALSE)
                status.login = loginOf(known.get());
            told(status);
        }));
}

Outcome Wifi::setNetwork(const std::string &name, const std::string &password)
{
    if (!m_device.isPresent())
        return Outcome::NoDevice;
    if (name.empty() || name.size() > LONGEST_NAME)
        return Outcome::Failed;
    m_wanted = {name, password, password.empty() ? OPEN : WPA, false};
    return Outcome::Done;
}

Outcome Wifi::join(int metric)
{
    if (!m_device.isPresent())
        return Outcome::NoDevice;
    if (!m_device.isOn() || m_wanted.name.empty() ||
        m_device.state() < NM_DEVICE_STATE_DISCONNECTED)
        return Outcome::Failed;
    forget();
    const auto seen = networksOf(stationsOf(NM_DEVICE_WIFI(m_device.get())));
    const auto network = findNetwork(seen, m_wanted.name);
    m_wanted.isHidden = !network;
    if (network)
        m_wanted.security = network->security;
    m_joining = true;
    m_joinCalls = std::make_unique<Calls>();
    m_deadline.start(JOIN_TIME, [this] { fail("it took too long"); });
    if (const Object<NMConnection> profile = trialProfile(m_wanted, metric))
        tryProfile(profile.get());
    else
        m_deadline.start(0ms, [this] { fail("its kind or the password cannot be used"); });
    m_changed();
    return Outcome::Done;
}

// The addressing is that of the network before only if it is the same network.
Object<NMConnection> Wifi::trialProfile(const WifiLogin &login, int metric) const
{
    Object<NMConnection> trial = newProfile(Kind::Wifi, m_device.name());
    g_object_set(nm_connection_get_setting_connection(trial.get()), NM_SETTING_CONNECTION_ID,
                 trialName(m_device.name()).c_str(), nullptr);
    setAutomatic(trial.get(), false);
    NMRemoteConnection *former = m_links.profileOf(m_device);
    if (former != nullptr && networkName(NM_CONNECTION(former)) == login.name)
        copyAddressing(NM_CONNECTION(former), trial.get());
    setMetric(trial.get(), metric);
    return network::setNetwork(trial.get(), login) ? std::move(trial) : nullptr;
}

void Wifi::tryProfile(NMConnection *profile)
{
    nm_client_add_and_activate_connection2(
        m_links.client(), profile, m_device.get(), nullptr, volatileOptions().get(),
        m_joinCalls->cancellable(), Calls::answer,
        m_joinCalls->expect([this](GObject *source, GAsyncResult *result) {
            Error error;
            const Object<NMActiveConnection> active(nm_client_add_and_activate_connection2_finish(
                NM_CLIENT(source), result, nullptr, &error));
            if (active)
                onTrying(active.get());
            else
                fail(error.text().c_str());
        }));
}

void Wifi::onTrying(NMActiveConnection *active)
{
    m_trial = share(active);
    m_trialHandlers.add(active, "notify::" NM_ACTIVE_CONNECTION_STATE, [this] { onTrialState(); });
    onTrialState();
}

void Wifi::onTrialState()
{
    switch (nm_active_connection_get_state(m_trial.get())) {
    case NM_ACTIVE_CONNECTION_STATE_ACTIVATED:
        return keepTrial();
    case NM_ACTIVE_CONNECTION_STATE_DEACTIVATING:
    case NM_ACTIVE_CONNECTION_STATE_DEACTIVATED:
        return fail("it was refused or is out of reach");
    default:
        return;
    }
}

// From here on it is the device's profile: named so, on disk, and joined again by itself.
void Wifi::keepTrial()
{
    const Object<NMRemoteConnection> profile =
        share(nm_active_connection_get_connection(m_trial.get()));
    endTrial();
    const Object<NMConnection> kept(nm_simple_connection_new_clone(NM_CONNECTION(profile.get())));
    g_object_set(nm_connection_get_setting_connection(kept.get()), NM_SETTING_CONNECTION_ID,
                 profileName(m_device.name()).c_str(), nullptr);
    setAutomatic(kept.get(), m_device.isOn());
    m_links.keep(profile.get(), kept.get(),
                 [this, held = std::make_shared<Object<NMRemoteConnection>>(share(profile.get()))](
                     bool done) {
                     if (done)
                         m_links.removeOthers(m_device, held->get());
                     m_changed();
                 });
    m_changed();
}

// What the user asked for is not told: a network's name may be anything, a password is in it.
void Wifi::fail(const char *why)
{
    service::say(std::string("a Wi-Fi network is not joined: ") + why);
    const Object<NMActiveConnection> trial = share(m_trial.get());
    endTrial();
    m_failed = true;
    m_failure.start(FAILURE_TIME, [this] { endFailure(); });
    if (trial &&
        nm_active_connection_get_state(trial.get()) <= NM_ACTIVE_CONNECTION_STATE_ACTIVATED)
        nm_client_deactivate_connection_async(
            m_links.client(), trial.get(), m_calls.cancellable(), Calls::answer,
            m_calls.expect([](GObject *source, GAsyncResult *result) {
                nm_client_deactivate_connection_finish(NM_CLIENT(source), result, nullptr);
            }));
    bringBack();
    m_changed();
}

void Wifi::bringBack()
{
    if (m_device.isOn() && m_links.profileOf(m_device) != nullptr)
        m_links.activate(m_device, [](bool) {});
}

// The failure stays until the next join, unless the network before is back.
void Wifi::endFailure()
{
    if (!m_device.isActive())
        return;
    m_failed = false;
    m_changed();
}

void Wifi::endTrial()
{
    m_deadline.stop();
    m_trialHandlers.clear();
    m_trial.reset();
    m_joinCalls.reset();
    m_joining = false;
}

void Wifi::forget()
{
    endTrial();
    m_failure.stop();
    m_failed = false;
}

void Wifi::stateChanged()
{
    if (!m_device.isPresent())
        return forget();
    if (m_failed && !m_failure.isRunning())
        endFailure();
    if (m_joining || !m_device.isOn() || m_device.state() != NM_DEVICE_STATE_DISCONNECTED)
        m_rejoin.stop();
    else if (!m_rejoin.isRunning())
        m_rejoin.start(REJOIN_TIME, [this] { rejoinLater(); });
}

void Wifi::refused()
{
    if (m_trial)
        fail("it refuses the password");
}

void Wifi::rejoinLater()
{
    NMRemoteConnection *profile = m_links.profileOf(m_device);
    if (profile == nullptr)
        return;
    const auto seen = networksOf(stationsOf(NM_DEVICE_WIFI(m_device.get())));
    if (findNetwork(seen, networkName(NM_CONNECTION(profile))))
        bringBack();
    m_rejoin.start(REJOIN_TIME, [this] { rejoinLater(); });
}

} // namespace network
