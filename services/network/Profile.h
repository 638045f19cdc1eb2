// What netServer writes into NetworkManager's profiles (nm-settings-nmcli(5)). The functions only
// change a profile in memory.
#pragma once

#include "platform/posix/Ipv4.h"
#include "services/network/GLib.h"
#include "services/network/Settings.h"

#include <NetworkManager.h>
#include <optional>
#include <string>

namespace network {

// The name of a device's profile, by keyOf(), and of a Wi-Fi device's that is only tried.
std::string profileName(const std::string &key);
std::string trialName(const std::string &device);

// A profile for the device, which takes its address by DHCP: of Ethernet, or of a modem that dials
// with the operator's default, any modem; for Wi-Fi without a network yet.
Object<NMConnection> newProfile(Kind kind, const std::string &device);

bool isAutomatic(NMConnection *profile);
void setAutomatic(NMConnection *profile, bool automatic);

// Smaller metrics are preferred.
void setMetric(NMConnection *profile, int metric);
int metricOf(NMConnection *profile);

bool usesDhcp(NMConnection *profile);
// Forgets address and servers.
void useDhcp(NMConnection *profile);
// Without an address: one will be set by hand later, and until then the device has none. The
// servers stay.
void useStatic(NMConnection *profile, const std::optional<os::StaticAddress> &address);
std::optional<os::StaticAddress> staticAddress(NMConnection *profile);

struct Servers
{
    std::string preferred;
    std::string alternate;
};
// Of the operator's; both empty if there are none.
Servers serversOf(NMConnection *profile);
// In a profile that is static and has no address yet they wait for one.
void setServers(NMConnection *profile, const Servers &servers);

// The setting that keeps what NetworkManager has no place for; null if the profile has none.
NMSettingUser *userSetting(NMConnection *profile);

// Makes the addressing of one profile that of another.
void copyAddressing(NMConnection *from, NMConnection *to);

} // namespace network
