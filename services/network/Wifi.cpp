#include "services/network/Wifi.h"

#include "services/common/Journal.h"
#include "services/network/Profile.h"

#include <algorithm>

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

Wifi::Wifi(Links &links, Supplicant &supplicant, const Device &device,
           std::function<void()> changed)
    : m_links(links), m_supplicant(supplicant), m_device(device), m_changed(std::move(changed))
{
}

Outcome Wifi::networks(std::vector<WifiNetwork> &found)
{
    if (!m_device.isPresent())
        return Outcome::NoDevice;
    if (!m_device.isOn())
        return Outcome::Failed;
    found = networksOf(stationsOf(NM_DEVICE_WIFI(m_device.get())));
    if (!std::exchange(m_isScanning, true))
        scan();
    return Outcome::Done;
}

// NetworkManager may refuse one; the next call asks again.
void Wifi::scan()
{
    nm_device_wifi_request_scan_async(
        NM_DEVICE_WIFI(m_device.get()), m_calls.cancellable(), Calls::answer,
        m_calls.expect([this](GObject *source, GAsyncResult *result) {
            m_isScanning = false;
            nm_device_wifi_request_scan_finish(NM_DEVICE_WIFI(source), result, nullptr);
        }));
}

// --- Status ------------------------------------------------------------------------------------

WifiState Wifi::state() const
{
    if (!m_device.isOn())
        return WifiState::Off;
    if (m_device.isHeld())
        return m_failed ? WifiState::Failed : m_told.state;
    if (m_device.state() < NM_DEVICE_STATE_DISCONNECTED)
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

int Wifi::numberOf(const std::string &name) const
{
    if (!m_device.isPresent())
        return -1;
    const auto seen = networksOf(stationsOf(NM_DEVICE_WIFI(m_device.get())));
    const auto found = std::find_if(seen.begin(), seen.end(),
                                    [&](const WifiNetwork &each) { return each.name == name; });
    return found == seen.end() ? -1 : static_cast<int>(found - seen.begin());
}

WifiLogin Wifi::loginOf(NMConnection *profile) const
{
    const WifiLogin login{networkName(profile), networkPassword(profile), securityOf(profile),
                          false};
    return login.name == m_known.name && login.password.empty() ? m_known : login;
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
    const bool isWanted = m_joining || m_failed || profile == nullptr;
    status.login = isWanted ? m_wanted : loginOf(NM_CONNECTION(profile));
    status.number = numberOf(status.login.name);
    m_told = status;
    if (isWanted || status.login.security < WPA || !status.login.password.empty())
        return told(status);
    nm_remote_connection_get_secrets_async(
        profile, NM_SETTING_WIRELESS_SECURITY_SETTING_NAME, m_calls.cancellable(), Calls::answer,
        m_calls.expect([this, status, told](GObject *source, GAsyncResult *result) mutable {
            const Variant secrets(nm_remote_connection_get_secrets_finish(
                NM_REMOTE_CONNECTION(source), result, nullptr));
            takeSecrets(NM_CONNECTION(source), secrets.get());
            status.login = loginOf(NM_CONNECTION(source));
            told(status);
        }));
}

void Wifi::takeSecrets(NMConnection *profile, GVariant *secrets)
{
    const Object<NMConnection> known(nm_simple_connection_new_clone(profile));
    if (secrets != nullptr &&
        nm_connection_update_secrets(known.get(), NM_SETTING_WIRELESS_SECURITY_SETTING_NAME,
                                     secrets, nullptr) != FALSE)
        m_known = loginOf(known.get());
}

// --- Joining -----------------------------------------------------------------------------------

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
    const Object<NMActiveConnection> former = endTrial();
    const auto network = findToJoin(stationsOf(NM_DEVICE_WIFI(m_device.get())), m_wanted.name,
                                    !m_wanted.password.empty());
    m_wanted.isHidden = !network;
    if (network)
        m_wanted.security = network->security;
    begin();
    m_next = trialProfile(m_wanted, metric);
    if (!m_next)
        m_deadline.start(0ms, [this] { fail("its kind or the password cannot be used"); });
    else if (!m_isAsking)
        ask();
    if (!m_next && former) // which another trial would have ended
        m_links.deactivate(former.get());
    m_changed();
    return Outcome::Done;
}

void Wifi::begin()
{
    m_failure.stop();
    m_failed = false;
    m_joining = true;
    m_deadline.start(JOIN_TIME, [this] { fail("it took too long"); });
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

void Wifi::ask()
{
    m_isAsking = true;
    m_supplicant.joinByLastScan(m_device.name());
    const Object<NMConnection> asked = std::move(m_next);
    nm_client_add_and_activate_connection2(
        m_links.client(), asked.get(), m_device.get(), nullptr, volatileOptions().get(),
        m_calls.cancellable(), Calls::answer,
        m_calls.expect([this, join = m_join](GObject *source, GAsyncResult *result) {
            onAnswer(join, source, result);
        }));
}

void Wifi::onAnswer(unsigned join, GObject *source, GAsyncResult *result)
{
    Error error;
    const Object<NMActiveConnection> active(
        nm_client_add_and_activate_connection2_finish(NM_CLIENT(source), result, nullptr, &error));
    m_isAsking = false;
    if (join == m_join && m_joining)
        return active ? onTrying(active.get()) : fail(error.text().c_str());
    if (m_next && m_device.isPresent())
        return ask();
    if (active)
        m_links.deactivate(active.get());
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
    m_deadline.stop();
    m_trialHandlers.clear(); // the state may be told twice
    NMRemoteConnection *profile = nm_active_connection_get_connection(m_trial.get());
    m_links.keep(
        profile,
        [this](NMConnection *kept) {
            g_object_set(nm_connection_get_setting_connection(kept), NM_SETTING_CONNECTION_ID,
                         profileName(m_device.key()).c_str(), nullptr);
            setAutomatic(kept, m_device.isOn());
            return true;
        },
        [this, join = m_join,
         held = std::make_shared<Object<NMRemoteConnection>>(share(profile))](bool kept) {
            if (kept)
                m_links.removeOthers(m_device, held->get());
            if (join == m_join && m_joining)
                onKept(kept);
        });
}

void Wifi::onKept(bool kept)
{
    if (!kept)
        return fail("it cannot be kept");
    endTrial();
    m_known = m_wanted;
    m_changed();
}

// What the user asked for is not told: a network's name may be anything, a password is in it.
void Wifi::fail(const char *why)
{
    service::say(std::string("a Wi-Fi network is not joined: ") + why);
    const Object<NMActiveConnection> trial = endTrial();
    m_failed = true;
    m_failure.start(FAILURE_TIME, [this] { endFailure(); });
    if (trial)
        m_links.deactivate(trial.get());
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

// What is under way, if NetworkManager has begun with it: it goes on unless it is ended.
Object<NMActiveConnection> Wifi::endTrial()
{
    ++m_join;
    m_deadline.stop();
    m_trialHandlers.clear();
    m_next.reset();
    m_joining = false;
    return std::move(m_trial);
}

// --- The device --------------------------------------------------------------------------------

void Wifi::attached()
{
    NMRemoteConnection *tried = m_links.triedOn(m_device);
    if (tried != nullptr && !m_joining) {
        m_wanted = loginOf(NM_CONNECTION(tried));
        begin();
        onTrying(m_device.connection());
    }
    stateChanged();
}

void Wifi::forget()
{
    const Object<NMActiveConnection> trial = endTrial();
    if (trial)
        m_links.deactivate(trial.get());
    m_failure.stop();
    m_failed = false;
    m_rejoin.stop();
}

void Wifi::lost()
{
    if (!m_joining || !m_device.isHeld())
        return forget();
    m_rejoin.stop();
    fail("NetworkManager has gone");
}

void Wifi::stateChanged()
{
    if (!m_device.isPresent())
        return;
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
    if (profile == nullptr || !m_device.isPresent())
        return;
    const auto seen = networksOf(stationsOf(NM_DEVICE_WIFI(m_device.get())));
    if (findNetwork(seen, networkName(NM_CONNECTION(profile))))
        bringBack();
    m_rejoin.start(REJOIN_TIME, [this] { rejoinLater(); });
}

} // namespace network
