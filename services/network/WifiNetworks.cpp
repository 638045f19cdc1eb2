#include "services/network/WifiNetworks.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace network {
namespace {

struct BytesDeleter
{
    void operator()(GBytes *bytes) const { g_bytes_unref(bytes); }
};
using Bytes = std::unique_ptr<GBytes, BytesDeleter>;

std::string toString(GBytes *bytes)
{
    gsize size = 0;
    const void *data = bytes == nullptr ? nullptr : g_bytes_get_data(bytes, &size);
    return data == nullptr ? std::string() : std::string(static_cast<const char *>(data), size);
}

// What NetworkManager calls the keys of each (nm-settings-nmcli(5), 802-11-wireless-security).
const char *keyManagement(Security security)
{
    switch (security) {
    case OPEN_ENCRYPTED:
        return "owe";
    case WPA:
        return "wpa-psk";
    case WEP:
        return "none";
    case WPA3:
        return "sae";
    default:
        return nullptr;
    }
}

bool hasFlag(unsigned flags, unsigned flag)
{
    return (flags & flag) != 0;
}

} // namespace

Station toStation(NMAccessPoint *station)
{
    const unsigned security = static_cast<unsigned>(nm_access_point_get_wpa_flags(station)) |
                              static_cast<unsigned>(nm_access_point_get_rsn_flags(station));
    return {toString(nm_access_point_get_ssid(station)), nm_access_point_get_strength(station),
            nm_access_point_get_flags(station), static_cast<NM80211ApSecurityFlags>(security)};
}

std::vector<Station> stationsOf(NMDeviceWifi *device)
{
    const GPtrArray *all = nm_device_wifi_get_access_points(device);
    std::vector<Station> stations;
    stations.reserve(all->len);
    for (guint index = 0; index < all->len; ++index)
        stations.push_back(toStation(NM_ACCESS_POINT(g_ptr_array_index(all, index))));
    return stations;
}

Security securityOf(const Station &station)
{
    const unsigned keys = station.security;
    if (hasFlag(keys, NM_802_11_AP_SEC_KEY_MGMT_PSK))
        return WPA;
    if (hasFlag(keys, NM_802_11_AP_SEC_KEY_MGMT_SAE))
        return WPA3;
    if (hasFlag(keys, NM_802_11_AP_SEC_KEY_MGMT_OWE))
        return OPEN_ENCRYPTED;
    if (hasFlag(keys, NM_802_11_AP_SEC_KEY_MGMT_802_1X | NM_802_11_AP_SEC_KEY_MGMT_EAP_SUITE_B_192))
        return ENTERPRISE;
    return hasFlag(station.flags, NM_802_11_AP_FLAGS_PRIVACY) ? WEP : OPEN;
}

std::vector<WifiNetwork> networksOf(const std::vector<Station> &stations)
{
    std::map<std::string, WifiNetwork> strongest;
    for (const Station &station : stations) {
        if (station.name.empty() || station.name.find_first_not_of('\0') == std::string::npos)
            continue;
        WifiNetwork &network = strongest[station.name];
        if (network.name.empty() || station.level > network.level)
            network = {station.name, std::min(station.level, 100), securityOf(station)};
    }
    std::vector<WifiNetwork> networks;
    networks.reserve(strongest.size());
    for (auto &[name, network] : strongest)
        networks.push_back(std::move(network));
    return networks;
}

std::optional<WifiNetwork> findNetwork(const std::vector<WifiNetwork> &networks,
                                       const std::string &name)
{
    const auto found = std::find_if(networks.begin(), networks.end(),
                                    [&](const WifiNetwork &each) { return each.name == name; });
    return found == networks.end() ? std::nullopt : std::optional(*found);
}

std::optional<WifiNetwork> findToJoin(const std::vector<Station> &stations, const std::string &name,
                                      bool hasPassword)
{
    std::vector<Station> secured;
    std::copy_if(stations.begin(), stations.end(), std::back_inserter(secured),
                 [](const Station &station) { return securityOf(station) >= WPA; });
    const auto found = hasPassword ? findNetwork(networksOf(secured), name) : std::nullopt;
    return found ? found : findNetwork(networksOf(stations), name);
}

bool setNetwork(NMConnection *profile, const WifiLogin &login)
{
    if (login.security == ENTERPRISE || login.password.find('\0') != std::string::npos ||
        g_utf8_validate(login.password.c_str(), -1, nullptr) == FALSE)
        return false;
    const Bytes name(g_bytes_new(login.name.data(), login.name.size()));
    g_object_set(nm_connection_get_setting_wireless(profile), NM_SETTING_WIRELESS_SSID, name.get(),
                 NM_SETTING_WIRELESS_HIDDEN, gboolean{login.isHidden}, nullptr);
    nm_connection_remove_setting(profile, NM_TYPE_SETTING_WIRELESS_SECURITY);
    const char *keys = keyManagement(login.security);
    if (keys != nullptr) {
        NMSetting *setting = nm_setting_wireless_security_new();
        g_object_set(setting, NM_SETTING_WIRELESS_SECURITY_KEY_MGMT, keys, nullptr);
        if (login.security == WPA || login.security == WPA3)
            g_object_set(setting, NM_SETTING_WIRELESS_SECURITY_PSK, login.password.c_str(),
                         nullptr);
        if (login.security == WEP)
            g_object_set(setting, NM_SETTING_WIRELESS_SECURITY_WEP_KEY0, login.password.c_str(),
                         nullptr);
        nm_connection_add_setting(profile, setting);
    }
    return nm_connection_normalize(profile, nullptr, nullptr, nullptr) != FALSE &&
           nm_connection_verify_secrets(profile, nullptr) != FALSE;
}

std::string networkName(NMConnection *profile)
{
    NMSettingWireless *setting = nm_connection_get_setting_wireless(profile);
    return setting == nullptr ? std::string() : toString(nm_setting_wireless_get_ssid(setting));
}

std::string networkPassword(NMConnection *profile)
{
    NMSettingWirelessSecurity *setting = nm_connection_get_setting_wireless_security(profile);
    if (setting == nullptr)
        return {};
    const char *password = securityOf(profile) == WEP
                               ? nm_setting_wireless_security_get_wep_key(setting, 0)
                               : nm_setting_wireless_security_get_psk(setting);
    return network::toString(password);
}

Security securityOf(NMConnection *profile)
{
    NMSettingWirelessSecurity *setting = nm_connection_get_setting_wireless_security(profile);
    if (setting == nullptr)
        return OPEN;
    const std::string keys = network::toString(nm_setting_wireless_security_get_key_mgmt(setting));
    for (const Security each : {OPEN_ENCRYPTED, WPA, WEP, WPA3}) {
        if (keys == keyManagement(each))
            return each;
    }
    return ENTERPRISE;
}

} // namespace network
