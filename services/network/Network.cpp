#include "services/network/Network.h"

#include "services/common/Journal.h"
#include "services/network/Profile.h"

#include <algorithm>

namespace network {
namespace {

using namespace std::chrono_literals;

constexpr auto RETRY_TIME = 1s;
constexpr auto MODEM_RETRY_TIME = 5s;

constexpr int BEST_METRIC = 100;
constexpr int METRIC_STEP = 100;

void ignore(bool) {}

} // namespace

Network::Network(GDBusConnection *bus, Modems &modems, Settings settings, std::string folder,
                 std::string ethernet, std::function<void(const std::vector<Record> &)> told)
    : m_bus(share(bus)),
      m_modems(modems),
      m_settings(std::move(settings)),
      m_folder(std::move(folder)),
      m_told(std::move(told)),
      m_devices(modems, std::move(ethernet),
                {[this](Kind kind, const std::string &name) {
                     return m_settings.isOn(keyOf(kind, name));
                 },
                 [this](Device &device) { onAttached(device); },
                 [this](Device &device) { onDeviceChanged(device); }}),
      m_supplicant(bus,
                   [this] {
                       if (Wifi *shown = wifi())
                           shown->refused();
                   }),
      m_burst([this] { tell(); }),
      m_penalties([this](const Device &device) { m_links->renewRoutes(device); })
{
    connect();
}

Network::~Network() = default;

// --- NetworkManager ----------------------------------------------------------------------------

void Network::connect()
{
    g_async_initable_new_async(
        NM_TYPE_CLIENT, G_PRIORITY_DEFAULT, m_calls.cancellable(), Calls::answer,
        m_calls.expect(
            [this](GObject *source, GAsyncResult *result) { onConnected(source, result); }),
        NM_CLIENT_DBUS_CONNECTION, m_bus.get(), NM_CLIENT_INSTANCE_FLAGS,
        static_cast<guint>(NM_CLIENT_INSTANCE_FLAGS_NO_AUTO_FETCH_PERMISSIONS), nullptr);
}

void Network::onConnected(GObject *source, GAsyncResult *result)
{
    Error error;
    const Object<GObject> made(
        g_async_initable_new_finish(G_ASYNC_INITABLE(source), result, &error));
    if (!made) {
        service::warn("no client of NetworkManager: " + error.text());
        return m_retry.start(RETRY_TIME, [this] { connect(); });
    }
    NMClient *client = NM_CLIENT(made.get());
    m_links = std::make_unique<Links>(client, m_folder);
    m_handlers.add(client, "notify::" NM_CLIENT_NM_RUNNING, [this] { onRunning(); });
    m_handlers.add(client, "notify::" NM_CLIENT_CONNECTIONS, [this] { watchProfiles(); });
    watchProfiles();
    m_devices.watch(client);
}

void Network::onRunning()
{
    if (nm_client_get_nm_running(m_links->client()) != FALSE)
        return;
    service::say("NetworkManager is away");
    m_takenOver.clear();
}

// A profile that was changed is read again some time after the answer that it is kept.
void Network::watchProfiles()
{
    m_profiles.clear();
    const GPtrArray *all = nm_client_get_connections(m_links->client());
    for (guint index = 0; index < all->len; ++index)
        m_profiles.add(g_ptr_array_index(all, index), NM_CONNECTION_CHANGED, [this] {
            for (const auto &wifi : m_wifis)
                wifi->profilesChanged();
            m_burst.changed();
        });
    for (Device *device : m_devices.all()) {
        if (!device->isPresent() || profileOf(*device) == nullptr)
            continue;
        putInOrder(*device);
        takeOver(*device);
    }
    m_burst.changed();
}

// --- Devices -----------------------------------------------------------------------------------

// What the operator has chosen holds after a start of either service, of the modem or of the panel.
void Network::onAttached(Device &device)
{
    if (device.kind() == Kind::Wifi && wifiOf(device) == nullptr)
        m_wifis.push_back(std::make_unique<Wifi>(*m_links, m_supplicant, device, [this, &device] {
            if (device.isPresent())
                putInOrder(device); // a network that has just been joined
            tellChange();
        }));
    learn(device);
    putInOrder(device);
    if (device.isOn())
        bringUp(device);
    takeOver(device);
    if (Wifi *wifi = wifiOf(device))
        wifi->attached();
    m_penalties.changed(device);
    m_burst.changed();
}

void Network::onDeviceChanged(Device &device)
{
    if (Wifi *wifi = wifiOf(device))
        device.isPresent() ? wifi->stateChanged() : wifi->lost();
    takeOver(device);
    dialOnce(device);
    disableModems();
    m_penalties.changed(device);
    m_burst.changed();
}

Wifi *Network::wifiOf(const Device &device) const
{
    const auto found = std::find_if(m_wifis.begin(), m_wifis.end(),
                                    [&](const auto &wifi) { return &wifi->device() == &device; });
    return found == m_wifis.end() ? nullptr : found->get();
}

Wifi *Network::wifi() const
{
    const Device *device = findKind(Kind::Wifi);
    return device == nullptr ? nullptr : wifiOf(*device);
}

// The profiles have what the settings had.
void Network::learn(Device &device)
{
    NMRemoteConnection *profile = profileOf(device);
    if (!m_settings.isLost() || profile == nullptr)
        return;
    m_settings.learn(device.key(), isAutomatic(NM_CONNECTION(profile)));
    device.setOn(m_settings.isOn(device.key()));
    if (network::metricOf(NM_CONNECTION(profile)) == BEST_METRIC)
        m_settings.learn(device.kind());
}

void Network::putInOrder(Device &device)
{
    NMRemoteConnection *profile = profileOf(device);
    const int metric = metricOf(device.kind());
    const bool on = device.isOn();
    const bool isRight = profile != nullptr && isAutomatic(NM_CONNECTION(profile)) == on &&
                         network::metricOf(NM_CONNECTION(profile)) == metric;
    const bool canBeMade = profile != nullptr || device.kind() != Kind::Wifi;
    if (!isRight && canBeMade)
        m_links->change(
            device,
            [on, metric](NMConnection *changed) {
                setAutomatic(changed, on);
                setMetric(changed, metric);
                return true;
            },
            ignore);
    if (!on)
        m_links->disconnect(device, [this](bool) { disableModems(); });
}

// What a service that has died has left half done. Of two profiles of a network one is too many.
void Network::bringUp(const Device &device)
{
    m_links->letAutomatic(device);
    if (NMRemoteConnection *profile = profileOf(device))
        m_links->removeOthers(device, profile);
    if (device.kind() == Kind::Modem)
        m_toDial.insert(&device);
    dialOnce(device);
}

// By itself NetworkManager would not: the operator's word that ended the last call counts for the
// profile, and outlives the device.
void Network::dialOnce(const Device &device)
{
    if (device.state() < NM_DEVICE_STATE_DISCONNECTED || m_toDial.erase(&device) == 0)
        return;
    const bool isIdle = device.state() == NM_DEVICE_STATE_DISCONNECTED;
    if (device.isOn() && isIdle && profileOf(device) != nullptr)
        m_links->activate(device, ignore);
}

// NetworkManager, started again after it has died, leaves a cable's address as it finds it: nothing
// renews its lease, and there are no name servers.
void Network::takeOver(const Device &device)
{
    NMActiveConnection *active = device.isActive() && device.isOn() ? device.connection() : nullptr;
    if (device.kind() != Kind::Ethernet || active == nullptr || profileOf(device) == nullptr)
        return;
    const unsigned flags = nm_active_connection_get_state_flags(active);
    if ((flags & NM_ACTIVATION_STATE_FLAG_EXTERNAL) != 0 &&
        m_takenOver.insert(toString(nm_object_get_path(NM_OBJECT(active)))).second)
        m_links->activate(device, ignore);
}

// --- Switches ----------------------------------------------------------------------------------

// The settings are the choice; the profile follows it when it can, at the latest when the device is
// there again.
void Network::switchDevice(const std::string &name, bool on, const Done &done)
{
    Device *device = m_devices.find(name);
    if (device == nullptr || !device->isKnown())
        return done(Outcome::NoDevice);
    if (!m_settings.setOn(device->key(), on))
        return done(Outcome::Failed);
    if (Wifi *wifi = wifiOf(*device))
        wifi->forget();
    const auto finish = [this, device, on, done](bool) {
        finishSwitch(*device, on);
        done(Outcome::Done);
    };
    if (profileOf(*device) == nullptr)
        return finish(false);
    m_links->rewrite(
        *device,
        [on](NMConnection *profile) {
            setAutomatic(profile, on);
            return true;
        },
        finish);
}

// A modem may take half a minute to find its network.
void Network::finishSwitch(Device &device, bool on)
{
    if (!on)
        return finishOff(device);
    device.setOn(true);
    tellChange();
    m_links->letAutomatic(device);
    wakeModem(device, [this, &device] {
        const bool canBe =
            device.state() >= NM_DEVICE_STATE_DISCONNECTED && profileOf(device) != nullptr;
        if (device.isOn() && canBe)
            m_links->activate(device, ignore);
    });
}

void Network::finishOff(Device &device)
{
    m_links->disconnect(device, [this, &device](bool) {
        if (m_settings.isOn(device.key())) // meanwhile
            return;
        device.setOn(false);
        tellChange();
        disableModems();
    });
}

// Switched on, it is probed anew, and dialled when it is back: ModemManager 1.20 would never ask
// one again for its signal that it has only disabled and enabled.
void Network::wakeModem(const Device &device, std::function<void()> then)
{
    if (device.kind() != Kind::Modem || !device.isPresent())
        return then();
    const std::string path = toString(nm_device_get_udi(device.get()));
    m_devices.expectProbe(device);
    m_modems.renew(path, [this, &device, path, then = std::move(then)](bool begun) {
        if (begun)
            return;
        m_devices.forgetProbe(device);
        m_modems.enable(path, true, [then](bool) { then(); });
    });
}

// One that is off, and not dialled any more: if NetworkManager and this end a call at the same
// time, one of them fails.
bool Network::mustDisable(const Device &device) const
{
    const bool isOff = device.isPresent() && !device.isOn();
    if (device.kind() != Kind::Modem || !isOff || device.state() > NM_DEVICE_STATE_DISCONNECTED)
        return false;
    const auto found = m_modems.all().find(toString(nm_device_get_udi(device.get())));
    return found != m_modems.all().end() && found->second.state >= MM_MODEM_STATE_ENABLING;
}

// ModemManager may refuse while it is at something else, or end something afterwards that enables
// the modem: it is asked again until the modem is disabled.
void Network::disableModems()
{
    if (m_modemRetry.isRunning())
        return;
    for (const Device *device : m_devices.all()) {
        if (!mustDisable(*device))
            continue;
        m_modems.enable(toString(nm_device_get_udi(device->get())), false, ignore);
        m_modemRetry.start(MODEM_RETRY_TIME, [this] { disableModems(); });
    }
}

void Network::change(const Device &device, Links::Edit edit, Done done)
{
    const Wifi *wifi = wifiOf(device);
    if (!m_links || (wifi != nullptr && (wifi->isJoining() || profileOf(device) == nullptr)))
        return done(Outcome::Failed);
    const bool on = device.isOn();
    const int metric = metricOf(device.kind());
    m_links->change(
        device,
        [edit = std::move(edit), on, metric](NMConnection *profile) {
            setAutomatic(profile, on);
            setMetric(profile, metric);
            return edit(profile);
        },
        [this, done = std::move(done)](bool kept) {
            if (kept)
                tellChange();
            done(kept ? Outcome::Done : Outcome::Failed);
        });
}

// --- Preferred link ----------------------------------------------------------------------------

int Network::metricOf(Kind kind) const
{
    if (kind == preferred())
        return BEST_METRIC;
    int metric = BEST_METRIC;
    for (const Kind each : KINDS) {
        if (each != preferred())
            metric += METRIC_STEP;
        if (each == kind)
            break;
    }
    return metric;
}

Outcome Network::setPreferred(Kind kind)
{
    if (!m_settings.setPreferred(kind))
        return Outcome::Failed;
    for (Device *device : m_devices.all()) {
        if (device->isPresent())
            putInOrder(*device);
    }
    return Outcome::Done;
}

Outcome Network::joinWifi()
{
    Wifi *shown = wifi();
    return shown == nullptr ? Outcome::NoDevice : shown->join(metricOf(Kind::Wifi));
}

// --- Records -----------------------------------------------------------------------------------

NMRemoteConnection *Network::profileOf(const Device &device) const
{
    return m_links ? m_links->profileOf(device) : nullptr;
}

Record Network::recordOf(const Device &device) const
{
    NMRemoteConnection *profile = m_links ? m_links->inUse(device) : nullptr;
    return device.record(profile == nullptr ? nullptr : NM_CONNECTION(profile));
}

std::vector<Record> Network::records() const
{
    std::vector<Record> records;
    for (const Device *device : m_devices.all())
        records.push_back(recordOf(*device));
    return records;
}

Outcome Network::record(const std::string &name, Record &record) const
{
    const Device *device = find(name);
    if (device == nullptr || !device->isKnown())
        return Outcome::NoDevice;
    record = recordOf(*device);
    return Outcome::Done;
}

void Network::tellChange()
{
    m_isForced = true;
    m_burst.changed();
}

void Network::tell()
{
    std::vector<Record> now;
    for (Device *device : m_devices.all()) {
        now.push_back(recordOf(*device));
        if (device->isKnown())
            device->remember(now.back());
    }
    if (!std::exchange(m_isForced, false) && now == m_lastTold)
        return;
    m_lastTold = std::move(now);
    m_told(m_lastTold);
}

} // namespace network
