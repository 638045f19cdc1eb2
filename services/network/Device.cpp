#include "services/network/Device.h"

#include "services/network/Profile.h"

namespace network {
namespace {

constexpr gint64 PENALTY = 20000; // NetworkManager.conf(5), [connectivity]
constexpr const char *WATCHED[] = {"notify::" NM_DEVICE_STATE, "notify::" NM_DEVICE_HW_ADDRESS};
constexpr const char *LEASE[] = {"notify::" NM_IP_CONFIG_ADDRESSES, "notify::" NM_IP_CONFIG_GATEWAY,
                                 "notify::" NM_IP_CONFIG_NAMESERVERS};

// The address that is in force.
void fillInForce(Record &record, NMIPConfig *config)
{
    const GPtrArray *addresses = nm_ip_config_get_addresses(config);
    if (addresses->len == 0)
        return;
    auto *address = static_cast<NMIPAddress *>(g_ptr_array_index(addresses, 0));
    record.address = toString(nm_ip_address_get_address(address));
    record.mask = os::maskOf(nm_ip_address_get_prefix(address));
    record.gateway = toString(nm_ip_config_get_gateway(config));
    const char *const *servers = nm_ip_config_get_nameservers(config);
    for (int index = 0; index < 2 && servers != nullptr && servers[index] != nullptr; ++index)
        (index == 0 ? record.preferredDns : record.alternateDns) = servers[index];
}

// A static address is the operator's, whether or not there is a link to use it on.
void fillStatic(Record &record, NMConnection *profile)
{
    if (const auto address = staticAddress(profile)) {
        record.address = address->address;
        record.mask = os::maskOf(address->prefix);
        record.gateway = address->gateway;
    }
    const Servers servers = serversOf(profile);
    record.preferredDns = servers.preferred;
    record.alternateDns = servers.alternate;
}

} // namespace

std::optional<Kind> kindOf(NMDevice *device)
{
    switch (nm_device_get_device_type(device)) {
    case NM_DEVICE_TYPE_ETHERNET:
        return Kind::Ethernet;
    case NM_DEVICE_TYPE_WIFI:
        return Kind::Wifi;
    case NM_DEVICE_TYPE_MODEM:
        return Kind::Modem;
    default:
        return std::nullopt;
    }
}

void Device::attach(NMDevice *device, const std::function<void()> &changed)
{
    letGo();
    m_device = share(device);
    for (const char *signal : WATCHED)
        m_handlers.add(device, signal, changed);
    if (m_kind == Kind::Ethernet)
        m_handlers.add(device, "notify::" NM_DEVICE_ETHERNET_CARRIER, changed);
    m_handlers.add(device, "notify::" NM_DEVICE_IP4_CONFIG, [this, changed] {
        watchLease(changed);
        changed();
    });
    watchLease(changed);
}

void Device::watchLease(const std::function<void()> &changed)
{
    m_lease.clear();
    NMIPConfig *config = nm_device_get_ip4_config(get());
    for (const char *signal : LEASE) {
        if (config != nullptr)
            m_lease.add(config, signal, changed);
    }
}

void Device::letGo()
{
    m_hold.stop();
    m_lease.clear();
    m_handlers.clear();
    m_device.reset();
}

void Device::hold(std::chrono::milliseconds time, std::function<void()> ended)
{
    letGo();
    if (m_told)
        m_hold.start(time, std::move(ended));
    else
        ended();
}

void Device::detach()
{
    letGo();
    m_told.reset();
}

NMDeviceState Device::state() const
{
    return isPresent() ? nm_device_get_state(get()) : NM_DEVICE_STATE_UNKNOWN;
}

bool Device::isLinked() const
{
    if (!isPresent())
        return false;
    switch (m_kind) {
    case Kind::Ethernet:
        return nm_device_ethernet_get_carrier(NM_DEVICE_ETHERNET(get())) != FALSE;
    case Kind::Wifi:
        return state() >= NM_DEVICE_STATE_IP_CONFIG && state() <= NM_DEVICE_STATE_ACTIVATED;
    case Kind::Modem:
        return isActive();
    }
    return false;
}

bool Device::isPenalised() const
{
    NMIPConfig *config = isActive() ? nm_device_get_ip4_config(get()) : nullptr;
    if (config == nullptr || nm_device_get_connectivity(get(), AF_INET) != NM_CONNECTIVITY_FULL)
        return false;
    const GPtrArray *routes = nm_ip_config_get_routes(config);
    for (guint index = 0; index < routes->len; ++index) {
        auto *route = static_cast<NMIPRoute *>(g_ptr_array_index(routes, index));
        if (nm_ip_route_get_prefix(route) == 0 && nm_ip_route_get_metric(route) >= PENALTY)
            return true;
    }
    return false;
}

std::string Device::ipInterface() const
{
    return isPresent() ? toString(nm_device_get_ip_iface(get())) : std::string();
}

NMActiveConnection *Device::connection() const
{
    return isPresent() ? nm_device_get_active_connection(get()) : nullptr;
}

Record Device::record(NMConnection *profile) const
{
    if (isHeld())
        return heldRecord();
    Record record;
    record.device = m_name;
    record.kind = nameOf(m_kind);
    record.isPresent = isPresent();
    record.isOn = m_on;
    record.usesDhcp = profile == nullptr || network::usesDhcp(profile);
    if (!isPresent())
        return record;
    record.mac = ownAddress();
    record.isLinked = isLinked();
    record.isUp = m_on && (m_kind == Kind::Ethernet || state() >= NM_DEVICE_STATE_DISCONNECTED ||
                           m_kind == Kind::Modem);
    if (m_on)
        fillAddress(record, profile);
    record.isNormal = m_on && isActive() && record.isLinked && !record.address.empty();
    return record;
}

// The operator may have switched it meanwhile.
Record Device::heldRecord() const
{
    if (m_told->isOn == m_on)
        return *m_told;
    Record record;
    record.device = m_name;
    record.kind = nameOf(m_kind);
    record.mac = m_told->mac;
    record.isPresent = true;
    record.isOn = m_on;
    record.usesDhcp = m_told->usesDhcp;
    return record;
}

// Not the one that a scan may use for a moment.
std::string Device::ownAddress() const
{
    const char *own = nullptr;
    if (m_kind == Kind::Ethernet)
        own = nm_device_ethernet_get_permanent_hw_address(NM_DEVICE_ETHERNET(get()));
    else if (m_kind == Kind::Wifi)
        own = nm_device_wifi_get_permanent_hw_address(NM_DEVICE_WIFI(get()));
    const bool isKnown = own != nullptr && *own != '\0';
    return m_kind == Kind::Modem ? "" : toString(isKnown ? own : nm_device_get_hw_address(get()));
}

void Device::fillAddress(Record &record, NMConnection *profile) const
{
    NMIPConfig *config = nm_device_get_ip4_config(get());
    if (!record.usesDhcp)
        fillStatic(record, profile);
    else if (isActive() && config != nullptr)
        fillInForce(record, config);
    if (record.preferredDns.empty())
        record.preferredDns = record.alternateDns;
    if (record.alternateDns.empty())
        record.alternateDns = record.preferredDns;
}

} // namespace network
