// Wi-Fi networks in range, and profiles that join them.
#pragma once

#include "services/network/GLib.h"

#include <NetworkManager.h>
#include <optional>
#include <string>
#include <vector>

namespace network {

// As the interface has it: 2 and above are joined with a password.
enum Security {
    OPEN = 0,
    OPEN_ENCRYPTED = 1, // Opportunistic Wireless Encryption (RFC 8110)
    WPA = 2,            // a passphrase; also where WPA3 may be used instead
    WEP = 3,
    WPA3 = 4,       // SAE alone
    ENTERPRISE = 5, // cannot be joined
};

// One station, as a scan found it.
struct Station
{
    std::string name; // 0 to 32 bytes of any value (IEEE 802.11); "" if it is hidden
    int level = 0;    // 0 to 100
    NM80211ApFlags flags = NM_802_11_AP_FLAGS_NONE;
    NM80211ApSecurityFlags security = NM_802_11_AP_SEC_NONE; // WPA's and RSN's
};
Station toStation(NMAccessPoint *station);
std::vector<Station> stationsOf(NMDeviceWifi *device);

struct WifiNetwork
{
    std::string name;
    int level = 0;
    Security security = OPEN;
};

Security securityOf(const Station &station);

// One a name, as its strongest station is, in the order of the names. Hidden ones are left out.
std::vector<WifiNetwork> networksOf(const std::vector<Station> &stations);

// The network of that name; nothing if it is not in range.
std::optional<WifiNetwork> findNetwork(const std::vector<WifiNetwork> &networks,
                                       const std::string &name);

// The same for a login: who types a password does not mean an open station of that name, if another
// is there.
std::optional<WifiNetwork> findToJoin(const std::vector<Station> &stations, const std::string &name,
                                      bool hasPassword);

// What joins a network with a password. One that is not in range may be hidden.
struct WifiLogin
{
    std::string name;
    std::string password;
    Security security = OPEN;
    bool isHidden = false;
};
// Makes a profile one for that network. False for what NetworkManager would refuse: a passphrase of
// the wrong length, an enterprise network.
bool setNetwork(NMConnection *profile, const WifiLogin &login);
// The name of a profile's network, "" if it has none.
std::string networkName(NMConnection *profile);
// The password of a profile whose secrets are known, "" otherwise.
std::string networkPassword(NMConnection *profile);
Security securityOf(NMConnection *profile);

} // namespace network
