#include "services/network/Network.h"

#include "services/common/Journal.h"

#include <algorithm>
#include <net/if.h>
#include <set>
#include <tuple>

namespace network {
namespace {

using namespace std::chrono_literals;

constexpr auto BURST_TIME = 40ms;
constexpr auto RETRY_TIME = 1s;
// NetworkManager, or ModemManager, is started again meanwhile.
constexpr auto ABSENCE_TIME = 30s;

constexpr int BEST_METRIC = 100;
constexpr int METRIC_STEP = 100;

void callWith(const Done &done, bool succeeded)
{
    done(succeeded ? Outcome::Done : Outcome::Failed);
}

} // namespace

Network::Network(GDBusConnection *bus, Modems &modems, Settings settings, std::string folder,
                 std::string ethernet, std::function<void(const std::vector<Record> &)> told)
    : m_bus(share(bus)),
      m_modems(modems),
      m_settings(std::move(settings)),
      m_folder(std::move(folder)),
      m_ethernet(std::move(ethernet)),
      m_told(std::move(told)),
      m_supplicant(bus, [this] {
          if (m_wifi)
              m_wifi->refused();
      })
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
    m_handlers.add(client, "notify::" NM_CLIENT_DEVICES, [this] { adoptAll(); });
    m_handlers.add(client, "notify::" NM_CLIENT_CONNECTIONS, [this] { watchProfiles(); });
    watchProfiles();
    adoptAll();
    onRunning();
}

void Network::onRunning()
{
    if (nm_client_get_nm_running(m_links->client()) != FALSE)
        return adoptAll();
    service::say("NetworkManager is away");
    m_takenOver.clear();
    m_absence.start(ABSENCE_TIME, [this] { dropAbsent(); });
}

// A profile that was changed is read again some time after the answer that it is kept.
void Network::watchProfiles()
{
    m_profiles.clear();
    const GPtrArray *all = nm_client_get_connections(m_links->client());
    for (guint index = 0; index < all->len; ++index)
        m_profiles.add(g_ptr_array_index(all, index), NM_CONNECTION_CHANGED, [this] { changed(); });
    for (const auto &device : m_devices) {
        if (!device->isPresent() || m_links->profileOf(*device) == nullptr)
            continue;
        putInOrder(*device);
        takeOver(*device);
    }
    changed();
}

void Network::adoptAll()
{
    const GPtrArray *all = nm_client_get_devices(m_links->client());
    std::set<NMDevice *> there;
    m_unmanaged.clear();
    for (guint index = 0; index < all->len; ++index) {
        auto *device = NM_DEVICE(g_ptr_array_index(all, index));
        there.insert(device);
        adopt(device);
    }
    for (const auto &device : m_devices) {
        if (device->isPresent() && there.count(device->get()) == 0)
            release(*device);
    }
    changed();
}

void Network::adopt(NMDevice *nm)
{
    const auto kind = kindOf(nm);
    if (!kind)
        return;
    if (nm_device_get_state(nm) <= NM_DEVICE_STATE_UNMANAGED)
        return m_unmanaged.add(nm, "notify::" NM_DEVICE_STATE, [this] { adoptAll(); });
    Device &device = deviceOf(*kind, toString(nm_device_get_iface(nm)));
    if (device.get() == nm)
        return;
    device.attach(nm, [this, &device] { onDeviceChanged(device); });
    if (*kind == Kind::Modem && std::exchange(m_isProbed, false))
        m_isToDial = true;
    if (*kind == Kind::Wifi && (!m_wifi || !m_wifi->device().isPresent()))
        m_wifi = &wifiOf(device);
    putInOrder(device);
    takeOver(device);
    dialProbed(device);
}

Wifi &Network::wifiOf(const Device &device)
{
    for (const auto &wifi : m_wifis) {
        if (&wifi->device() == &device)
            return *wifi;
    }
    m_wifis.push_back(std::make_unique<Wifi>(*m_links, device, [this] { tellChange(); }));
    return *m_wifis.back();
}

// By itself NetworkManager would not: the operator's word that ended the last call counts for the
// profile, and outlives the device.
void Network::dialProbed(const Device &device)
{
    const bool isReady = device.state() >= NM_DEVICE_STATE_DISCONNECTED;
    if (device.kind() != Kind::Modem || !isReady || !std::exchange(m_isToDial, false))
        return;
    const bool isIdle = device.state() == NM_DEVICE_STATE_DISCONNECTED;
    if (device.isOn() && isIdle && profileOf(device) != nullptr)
        m_links->activate(device, [](bool) {});
}

// A device is not unplugged because the service that knows it is away for a moment.
void Network::release(Device &device)
{
    const bool isHeld = isAway() || isStillThere(device);
    device.detach(isHeld ? lastTold(device) : std::nullopt);
    if (isHeld)
        m_absence.start(ABSENCE_TIME, [this] { dropAbsent(); });
    if (m_wifi && &m_wifi->device() == &device)
        m_wifi->forget();
}

bool Network::isAway() const
{
    return nm_client_get_dbus_name_owner(m_links->client()) == nullptr;
}

bool Network::isStillThere(const Device &device) const
{
    if (device.kind() != Kind::Modem)
        return ::if_nametoindex(device.name().c_str()) != 0;
    return m_isProbed || !m_modems.isRunning() ||
           m_modems.all().count(toString(nm_device_get_udi(device.get()))) != 0;
}

std::optional<Record> Network::lastTold(const Device &device) const
{
    const auto found =
        std::find_if(m_lastTold.begin(), m_lastTold.end(),
                     [&](const Record &record) { return record.device == device.name(); });
    return found == m_lastTold.end() ? std::nullopt : std::optional(*found);
}

void Network::dropAbsent()
{
    m_isProbed = false;
    for (const auto &device : m_devices) {
        if (!device->isPresent())
            device->detach(std::nullopt);
    }
    changed();
}

// --- Devices -----------------------------------------------------------------------------------

Device &Network::deviceOf(Kind kind, const std::string &name)
{
    for (const auto &device : m_devices) {
        if (device->kind() == kind && device->name() == name)
            return *device;
    }
    m_devices.push_back(std::make_unique<Device>(kind, name, m_settings.isOn(name)));
    std::sort(m_devices.begin(), m_devices.end(), [this](const auto &one, const auto &other) {
        const auto place = [this](const Device &device) {
            return std::tuple(device.kind(), device.name() == m_ethernet);
        };
        return std::pair(place(*one), other->name()) < std::pair(place(*other), one->name());
    });
    return deviceOf(kind, name);
}

const Device *Network::find(const std::string &name) const
{
    const auto found = std::find_if(m_devices.begin(), m_devices.end(),
                                    [&](const auto &device) { return device->name() == name; });
    return found == m_devices.end() ? nullptr : found->get();
}

Device *Network::findKind(Kind kind) const
{
    Device *found = nullptr;
    for (const auto &device : m_devices) {
        if (device->kind() == kind && (found == nullptr || device->isPresent()))
            found = device.get();
    }
    return found;
}

// What the settings say, after a start of either service or of the panel.
void Network::putInOrder(Device &device)
{
    NMRemoteConnection *profile = m_links->profileOf(device);
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
            [](bool) {});
    if (!on)
        m_links->disconnect(device, [this, &device](bool) { powerModem(device, false, [] {}); });
}

Device *Network::findPresent(const std::string &name) const
{
    const auto found = std::find_if(m_devices.begin(), m_devices.end(), [&](const auto &device) {
        return device->name() == name && device->isPresent();
    });
    return found == m_devices.end() ? nullptr : found->get();
}

void Network::onDeviceChanged(const Device &device)
{
    if (m_wifi && &m_wifi->device() == &device)
        m_wifi->stateChanged();
    takeOver(device);
    dialProbed(device);
    changed();
}

// NetworkManager, started again after it has died, leaves a cable's address as it finds it: nothing
// renews its lease, and there are no name servers.
void Network::takeOver(const Device &device)
{
    NMActiveConnection *active = device.isActive() && device.isOn()
                                     ? nm_device_get_active_connection(device.get())
                                     : nullptr;
    if (device.kind() != Kind::Ethernet || active == nullptr ||
        m_links->profileOf(device) == nullptr)
        return;
    const unsigned flags = nm_active_connection_get_state_flags(active);
    if ((flags & NM_ACTIVATION_STATE_FLAG_EXTERNAL) != 0 &&
        m_takenOver.insert(toString(nm_object_get_path(NM_OBJECT(active)))).second)
        m_links->activate(device, [](bool) {});
}

void Network::switchDevice(const std::string &name, bool on, const Done &done)
{
    Device *device = findPresent(name);
    if (device == nullptr)
        return done(Outcome::NoDevice);
    if (!m_settings.setOn(name, on))
        return done(Outcome::Failed);
    if (m_wifi && &m_wifi->device() == device)
        m_wifi->forget();
    const auto finish = [this, device, on, done](bool kept) {
        if (!kept)
            m_settings.setOn(device->name(), device->isOn());
        else
            finishSwitch(*device, on);
        callWith(done, kept);
    };
    if (m_links->profileOf(*device) == nullptr)
        return finish(true);
    m_links->rewrite(
        *device,
        [on](NMConnection *profile) {
            setAutomatic(profile, on);
            return true;
        },
        finish);
}

// What cannot be done at once, without a cable or while a service is away, is done when it can: the
// operator's choice is kept. A modem may take half a minute to find its network.
void Network::finishSwitch(Device &device, bool on)
{
    if (!on)
        return m_links->disconnect(device, [this, &device](bool) {
            device.setOn(false);
            tellChange();
            powerModem(device, false, [] {});
        });
    device.setOn(true);
    tellChange();
    m_links->letAutomatic(device);
    powerModem(device, true, [this, &device] {
        const bool canBe =
            device.state() >= NM_DEVICE_STATE_DISCONNECTED && profileOf(device) != nullptr;
        if (device.isOn() && canBe)
            m_links->activate(device, [](bool) {});
    });
}

// Switched on, it is probed anew, and dialled when it is back: ModemManager 1.20 would never ask
// one again for its signal that it has only disabled and enabled.
void Network::powerModem(const Device &device, bool on, std::function<void()> then)
{
    if (device.kind() != Kind::Modem || !device.isPresent())
        return then();
    const std::string path = toString(nm_device_get_udi(device.get()));
    if (!on)
        return m_modems.enable(path, false, [then = std::move(then)](bool) { then(); });
    m_isProbed = true;
    m_modems.renew(path, [this, path, then = std::move(then)](bool begun) {
        if (begun)
            return;
        m_isProbed = false;
        m_modems.enable(path, true, [then](bool) { then(); });
    });
}

void Network::change(const Device &device, Links::Edit edit, Done done)
{
    if (device.kind() == Kind::Wifi && m_links->profileOf(device) == nullptr)
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
            callWith(done, kept);
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
    for (const auto &device : m_devices) {
        if (m_links && device->isPresent())
            putInOrder(*device);
    }
    return Outcome::Done;
}

Outcome Network::joinWifi()
{
    return m_wifi ? m_wifi->join(metricOf(Kind::Wifi)) : Outcome::NoDevice;
}

// --- Records -----------------------------------------------------------------------------------

NMRemoteConnection *Network::profileOf(const Device &device) const
{
    return m_links ? m_links->profileOf(device) : nullptr;
}

Record Network::recordOf(const Device &device) const
{
    NMRemoteConnection *profile = profileOf(device);
    return device.record(profile == nullptr ? nullptr : NM_CONNECTION(profile));
}

std::vector<Record> Network::records() const
{
    std::vector<Record> records;
    records.reserve(m_devices.size());
    for (const auto &device : m_devices)
        records.push_back(recordOf(*device));
    return records;
}

Outcome Network::record(const std::string &name, Record &record) const
{
    const Device *device = find(name);
    if (device == nullptr)
        return Outcome::NoDevice;
    Record now = recordOf(*device);
    if (!now.isPresent)
        return Outcome::NoDevice;
    record = std::move(now);
    return Outcome::Done;
}

void Network::tellChange()
{
    m_isForced = true;
    changed();
}

void Network::changed()
{
    if (!m_burst.isRunning())
        m_burst.start(BURST_TIME, [this] { tell(); });
}

// What NetworkManager leaves behind when it dies says nothing about the devices.
void Network::tell()
{
    if (m_links && isAway() && m_absence.isRunning())
        return;
    std::vector<Record> now = records();
    if (!std::exchange(m_isForced, false) && now == m_lastTold)
        return;
    m_lastTold = std::move(now);
    m_told(m_lastTold);
}

} // namespace network
