// A device as the interface tells it: org.sysset.Network1.xml has the fields.
#pragma once

#include "services/network/GLib.h"

#include <string>
#include <vector>

namespace network {

struct Record
{
    std::string device;
    std::string kind;
    std::string mac;
    std::string address;
    std::string mask;
    std::string gateway;
    std::string preferredDns;
    std::string alternateDns;
    bool isPresent = false;
    bool isOn = false;
    bool isUp = false;
    bool isLinked = false;
    bool usesDhcp = true;
    bool isNormal = false;
};
bool operator==(const Record &one, const Record &other);

// Floating references, as GDBus takes them.
GVariant *toVariant(const Record &record);
GVariant *toVariant(const std::vector<Record> &records);

// Text that a service found somewhere, as D-Bus takes it: what is no UTF-8 becomes question marks.
std::string asText(const std::string &text);

} // namespace network
