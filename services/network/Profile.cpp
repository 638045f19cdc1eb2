#include "services/network/Profile.h"

#include <cstring>

namespace network {
namespace {

constexpr int FOR_EVER = 0;               // connection.autoconnect-retries
constexpr int INFINITE = 0x7FFFFFFF;      // ipv4.dhcp-timeout
constexpr int CONFLICT_TIMEOUT_MS = 1000; // ipv4.dad-timeout
constexpr int BY_DEFAULT = -1;            // ipv4.dad-timeout
constexpr int NO_METRIC = -1;

// NetworkManager takes no name servers for a device without an address: they wait here for one.
constexpr const char *WAITING[] = {"panel-dns.preferred", "panel-dns.alternate"};

NMSettingIPConfig *ipv4(NMConnection *profile)
{
    return nm_connection_get_setting_ip4_config(profile);
}

const char *typeOf(Kind kind)
{
    switch (kind) {
    case Kind::Ethernet:
        return NM_SETTING_WIRED_SETTING_NAME;
    case Kind::Wifi:
        return NM_SETTING_WIRELESS_SETTING_NAME;
    case Kind::Modem:
        return NM_SETTING_GSM_SETTING_NAME;
    }
    return "";
}

NMSetting *newDeviceSetting(Kind kind)
{
    switch (kind) {
    case Kind::Ethernet:
        return nm_setting_wired_new();
    case Kind::Wifi:
        return nm_setting_wireless_new();
    case Kind::Modem:
        return nm_setting_gsm_new();
    }
    return nullptr;
}

// Only a typed address is tried for another host that has it: a server's would be told a second
// late.
void setMethod(NMConnection *profile, const char *method)
{
    const bool isTyped = std::strcmp(method, NM_SETTING_IP4_CONFIG_METHOD_MANUAL) == 0;
    g_object_set(ipv4(profile), NM_SETTING_IP_CONFIG_METHOD, method,
                 NM_SETTING_IP_CONFIG_DAD_TIMEOUT, isTyped ? CONFLICT_TIMEOUT_MS : BY_DEFAULT,
                 nullptr);
}

void clearAddresses(NMSettingIPConfig *setting)
{
    g_object_set(setting, NM_SETTING_IP_CONFIG_GATEWAY, nullptr, nullptr);
    nm_setting_ip_config_clear_addresses(setting);
}

Servers waitingServers(NMConnection *profile)
{
    NMSettingUser *user = userSetting(profile);
    if (user == nullptr)
        return {};
    return {toString(nm_setting_user_get_data(user, WAITING[0])),
            toString(nm_setting_user_get_data(user, WAITING[1]))};
}

void letWait(NMConnection *profile, const Servers &servers)
{
    if (userSetting(profile) == nullptr)
        nm_connection_add_setting(profile, nm_setting_user_new());
    NMSettingUser *user = userSetting(profile);
    nm_setting_user_set_data(user, WAITING[0], servers.preferred.c_str(), nullptr);
    nm_setting_user_set_data(user, WAITING[1], servers.alternate.c_str(), nullptr);
}

void clearServers(NMConnection *profile)
{
    for (const char *key : WAITING) {
        if (NMSettingUser *user = userSetting(profile))
            nm_setting_user_set_data(user, key, nullptr, nullptr);
    }
    nm_setting_ip_config_clear_dns(ipv4(profile));
    g_object_set(ipv4(profile), NM_SETTING_IP_CONFIG_IGNORE_AUTO_DNS, FALSE, nullptr);
}

// Always the same one, so that NetworkManager refuses a second profile for a device whose first one
// is not known here yet. Of Wi-Fi two stand side by side for a moment. The form is that of RFC
// 4122.
std::string uuidOf(Kind kind, const std::string &key)
{
    using Text = std::unique_ptr<char, decltype(&g_free)>;
    if (kind == Kind::Wifi)
        return Text(nm_utils_uuid_generate(), g_free).get();
    const Text digest(g_compute_checksum_for_string(G_CHECKSUM_SHA1, profileName(key).c_str(), -1),
                      g_free);
    const std::string hex = digest.get();
    return hex.substr(0, 8) + '-' + hex.substr(8, 4) + "-5" + hex.substr(13, 3) + "-8" +
           hex.substr(17, 3) + '-' + hex.substr(20, 12);
}

bool hasMethod(NMConnection *profile, const char *method)
{
    return toString(nm_setting_ip_config_get_method(ipv4(profile))) == method;
}

} // namespace

NMSettingUser *userSetting(NMConnection *profile)
{
    NMSetting *setting = nm_connection_get_setting(profile, NM_TYPE_SETTING_USER);
    return setting == nullptr ? nullptr : NM_SETTING_USER(setting);
}

std::string profileName(const std::string &key)
{
    return "panel-" + key;
}

std::string trialName(const std::string &device)
{
    return "trial-" + device;
}

Object<NMConnection> newProfile(Kind kind, const std::string &device)
{
    Object<NMConnection> profile(nm_simple_connection_new());
    NMSetting *connection = nm_setting_connection_new();
    const std::string key = keyOf(kind, device);
    g_object_set(connection, NM_SETTING_CONNECTION_ID, profileName(key).c_str(),
                 NM_SETTING_CONNECTION_UUID, uuidOf(kind, key).c_str(), NM_SETTING_CONNECTION_TYPE,
                 typeOf(kind), NM_SETTING_CONNECTION_INTERFACE_NAME,
                 kind == Kind::Modem ? nullptr : device.c_str(),
                 NM_SETTING_CONNECTION_AUTOCONNECT_RETRIES, FOR_EVER, nullptr);
    nm_connection_add_setting(profile.get(), connection);
    nm_connection_add_setting(profile.get(), newDeviceSetting(kind));
    NMSetting *ip4 = nm_setting_ip4_config_new();
    g_object_set(ip4, NM_SETTING_IP_CONFIG_METHOD, NM_SETTING_IP4_CONFIG_METHOD_AUTO,
                 NM_SETTING_IP_CONFIG_DHCP_TIMEOUT, INFINITE, NM_SETTING_IP_CONFIG_MAY_FAIL, FALSE,
                 nullptr);
    nm_connection_add_setting(profile.get(), ip4);
    NMSetting *ip6 = nm_setting_ip6_config_new();
    g_object_set(ip6, NM_SETTING_IP_CONFIG_METHOD, NM_SETTING_IP6_CONFIG_METHOD_DISABLED, nullptr);
    nm_connection_add_setting(profile.get(), ip6);
    return profile;
}

bool isAutomatic(NMConnection *profile)
{
    return nm_setting_connection_get_autoconnect(nm_connection_get_setting_connection(profile)) !=
           FALSE;
}

void setAutomatic(NMConnection *profile, bool automatic)
{
    g_object_set(nm_connection_get_setting_connection(profile), NM_SETTING_CONNECTION_AUTOCONNECT,
                 automatic ? TRUE : FALSE, nullptr);
}

void setMetric(NMConnection *profile, int metric)
{
    g_object_set(ipv4(profile), NM_SETTING_IP_CONFIG_ROUTE_METRIC, gint64{metric}, nullptr);
}

int metricOf(NMConnection *profile)
{
    NMSettingIPConfig *setting = ipv4(profile);
    return setting == nullptr ? NO_METRIC
                              : static_cast<int>(nm_setting_ip_config_get_route_metric(setting));
}

bool usesDhcp(NMConnection *profile)
{
    return hasMethod(profile, NM_SETTING_IP4_CONFIG_METHOD_AUTO);
}

void useDhcp(NMConnection *profile)
{
    clearAddresses(ipv4(profile));
    clearServers(profile);
    setMethod(profile, NM_SETTING_IP4_CONFIG_METHOD_AUTO);
}

void useStatic(NMConnection *profile, const std::optional<os::StaticAddress> &address)
{
    NMSettingIPConfig *setting = ipv4(profile);
    const Servers servers = serversOf(profile);
    clearAddresses(setting);
    if (!address) {
        setMethod(profile, NM_SETTING_IP4_CONFIG_METHOD_DISABLED);
        return setServers(profile, servers);
    }
    NMIPAddress *own =
        nm_ip_address_new(AF_INET, address->address.c_str(), address->prefix, nullptr);
    nm_setting_ip_config_add_address(setting, own);
    nm_ip_address_unref(own);
    if (!address->gateway.empty())
        g_object_set(setting, NM_SETTING_IP_CONFIG_GATEWAY, address->gateway.c_str(), nullptr);
    setMethod(profile, NM_SETTING_IP4_CONFIG_METHOD_MANUAL);
    setServers(profile, servers);
}

std::optional<os::StaticAddress> staticAddress(NMConnection *profile)
{
    NMSettingIPConfig *setting = ipv4(profile);
    if (usesDhcp(profile) || nm_setting_ip_config_get_num_addresses(setting) == 0)
        return std::nullopt;
    NMIPAddress *own = nm_setting_ip_config_get_address(setting, 0);
    return os::StaticAddress{nm_ip_address_get_address(own), nm_ip_address_get_prefix(own),
                             toString(nm_setting_ip_config_get_gateway(setting))};
}

Servers serversOf(NMConnection *profile)
{
    if (hasMethod(profile, NM_SETTING_IP4_CONFIG_METHOD_DISABLED))
        return waitingServers(profile);
    NMSettingIPConfig *setting = ipv4(profile);
    const guint count = nm_setting_ip_config_get_num_dns(setting);
    const auto server = [&](int index) {
        return static_cast<int>(count) > index
                   ? toString(nm_setting_ip_config_get_dns(setting, index))
                   : std::string();
    };
    return {server(0), server(1)};
}

void setServers(NMConnection *profile, const Servers &servers)
{
    clearServers(profile);
    if (hasMethod(profile, NM_SETTING_IP4_CONFIG_METHOD_DISABLED))
        return letWait(profile, servers);
    NMSettingIPConfig *setting = ipv4(profile);
    for (const std::string &server : {servers.preferred, servers.alternate}) {
        if (!server.empty())
            nm_setting_ip_config_add_dns(setting, server.c_str());
    }
    const bool hasOwn = nm_setting_ip_config_get_num_dns(setting) > 0;
    g_object_set(setting, NM_SETTING_IP_CONFIG_IGNORE_AUTO_DNS,
                 hasOwn && usesDhcp(profile) ? TRUE : FALSE, nullptr);
}

void copyAddressing(NMConnection *from, NMConnection *to)
{
    NMSetting *copy = nm_setting_duplicate(NM_SETTING(ipv4(from)));
    nm_connection_add_setting(to, copy);
}

} // namespace network
