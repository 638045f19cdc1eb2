// What netServer itself keeps: /mnt/data/network/netserver/settings.conf.
#pragma once

#include "services/common/Journal.h"

#include <set>
#include <string>

namespace network {

enum class Kind { Ethernet, Wifi, Modem };

// "ETH", "WIFI", "4G".
const char *nameOf(Kind kind);
// False if it is the name of no kind.
bool kindOf(const std::string &name, Kind &kind);

// What a device's choice and profile are kept under: its name, but for a modem, which may come back
// under another one.
std::string keyOf(Kind kind, const std::string &device);

// In the order in which the kinds follow one another after the preferred one.
constexpr Kind KINDS[] = {Kind::Ethernet, Kind::Wifi, Kind::Modem};

class Settings
{
public:
    // Reads the file; one that is missing counts as empty.
    explicit Settings(std::string path);

    // The file is there and cannot be read: what it said has to be learned from elsewhere.
    bool isLost() const { return m_isLost; }
    // Once for each, and not after it has been set.
    void learn(const std::string &device, bool on);
    void learn(Kind preferred);

    Kind preferred() const { return m_preferred; }
    bool isOn(const std::string &device) const { return m_off.count(device) == 0; }
    // Both replace the file, and keep what was there if that fails: then they return false.
    bool setPreferred(Kind kind);
    bool setOn(const std::string &device, bool on);

private:
    void read();
    bool write() const;
    bool keep(Kind preferred, std::set<std::string> off);

    std::string m_path;
    bool m_isLost = false;
    bool m_isPreferenceKnown = false; // of what was lost
    std::set<std::string> m_known;    // likewise
    Kind m_preferred = Kind::Ethernet;
    std::set<std::string> m_off; // devices that are switched off
};

} // namespace network
