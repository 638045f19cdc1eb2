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

// In the order in which the kinds follow one another after the preferred one.
constexpr Kind KINDS[] = {Kind::Ethernet, Kind::Wifi, Kind::Modem};

class Settings
{
public:
    // Reads the file; one that is missing or broken counts as empty.
    explicit Settings(std::string path);

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
    Kind m_preferred = Kind::Ethernet;
    std::set<std::string> m_off; // devices that are switched off
};

} // namespace network
