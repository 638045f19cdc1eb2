#include "services/network/Devices.h"

#include <algorithm>
#include <net/if.h>
#include <tuple>

namespace network {
namespace {

using namespace std::chrono_literals;

// NetworkManager, or ModemManager, is started again meanwhile.
constexpr auto ABSENCE_TIME = 30s;
// ModemManager asks a modem on a slow line many things.
constexpr auto PROBE_TIME = 60s;

} // namespace

Devices::Devices(Modems &modems, std::string ethernet, Listener listener)
    : m_modems(modems), m_ethernet(std::move(ethernet)), m_listener(std::move(listener))
{
}

void Devices::watch(NMClient *client)
{
    m_client = share(client);
    m_handlers.add(client, "notify::" NM_CLIENT_NM_RUNNING, [this] { adoptAll(); });
    m_handlers.add(client, "notify::" NM_CLIENT_DEVICES, [this] { adoptAll(); });
    adoptAll();
}

void Devices::adoptAll()
{
    const GPtrArray *all = nm_client_get_devices(m_client.get());
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
}

void Devices::adopt(NMDevice *nm)
{
    const auto kind = kindOf(nm);
    if (!kind)
        return;
    if (nm_device_get_state(nm) <= NM_DEVICE_STATE_UNMANAGED)
        return m_unmanaged.add(nm, "notify::" NM_DEVICE_STATE, [this] { adoptAll(); });
    Device &device = deviceOf(*kind, toString(nm_device_get_iface(nm)));
    if (device.get() == nm)
        return;
    if (*kind == Kind::Modem)
        endProbes(device);
    device.attach(nm, [this, &device] { m_listener.changed(device); });
    m_listener.attached(device);
}

// One that was probed may be back under another name.
void Devices::endProbes(const Device &back)
{
    for (const auto &device : m_devices) {
        if (m_probed.erase(device.get()) != 0 && device.get() != &back && device->isHeld())
            device->detach();
    }
}

// A device is not unplugged because the service that knows it is away for a moment.
void Devices::release(Device &device)
{
    const bool isProbed = m_probed.count(&device) != 0;
    if (isProbed || isAway() || isStillThere(device))
        device.hold(isProbed ? PROBE_TIME : ABSENCE_TIME, [this, &device] {
            m_probed.erase(&device);
            device.detach();
            m_listener.changed(device);
        });
    else
        device.detach();
    m_listener.changed(device);
}

bool Devices::isAway() const
{
    return nm_client_get_dbus_name_owner(m_client.get()) == nullptr;
}

bool Devices::isStillThere(const Device &device) const
{
    if (device.kind() != Kind::Modem)
        return ::if_nametoindex(device.name().c_str()) != 0;
    return !m_modems.isRunning() ||
           m_modems.all().count(toString(nm_device_get_udi(device.get()))) != 0;
}

Device &Devices::deviceOf(Kind kind, const std::string &name)
{
    if (Device *known = find(name); known != nullptr && known->kind() == kind)
        return *known;
    m_devices.push_back(std::make_unique<Device>(kind, name, m_listener.isOn(kind, name)));
    return *m_devices.back();
}

std::vector<Device *> Devices::all() const
{
    std::vector<Device *> all;
    all.reserve(m_devices.size());
    for (const auto &device : m_devices)
        all.push_back(device.get());
    const auto place = [this](const Device *device) {
        return std::tuple(device->kind(), device->name() == m_ethernet, device->isKnown());
    };
    std::sort(all.begin(), all.end(), [&](const Device *one, const Device *other) {
        return std::pair(place(one), other->name()) < std::pair(place(other), one->name());
    });
    return all;
}

Device *Devices::find(const std::string &name) const
{
    const auto found = std::find_if(m_devices.begin(), m_devices.end(),
                                    [&](const auto &device) { return device->name() == name; });
    return found == m_devices.end() ? nullptr : found->get();
}

Device *Devices::findKind(Kind kind) const
{
    Device *found = nullptr;
    for (Device *device : all())
        found = device->kind() == kind ? device : found;
    return found;
}

} // namespace network
