#include "platform/sim/NetDevices.h"

#include <algorithm>

namespace sim {
namespace {

constexpr const char *ADDRESS_FIELDS[] = {"sIpAddr", "sSubnetMask", "sGateway", "sPrefDns",
                                          "sAlterDns"};
constexpr const char *DNS_FIELDS[] = {"sPrefDns", "sAlterDns"};

template <typename State>
auto findBy(State &state, const char *key, const std::string &value, bool presentOnly)
{
    auto &devices = state["net"]["devices"];
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const Json &device) {
        return text(device, key) == value && (!presentOnly || isPresent(device));
    });
    return found == devices.end() ? nullptr : &*found;
}

} // namespace

bool serviceRuns(const Json &state)
{
    return state.at("net").at("server").get<bool>();
}

const std::string &text(const Json &record, const char *key)
{
    return record.at(key).get_ref<const std::string &>();
}

Json *findDevice(Json &state, const std::string &name)
{
    return findBy(state, "sDevName", name, false);
}

const Json *findDevice(const Json &state, const std::string &name)
{
    return findBy(state, "sDevName", name, false);
}

Json *presentDevice(Json &state, const std::string &kind)
{
    return findBy(state, "sNetType", kind, true);
}

bool isPresent(const Json &device)
{
    return device.at("present").get<bool>();
}

bool isOn(const Json &device)
{
    return text(device, "sFunction") == "enable";
}

bool usesDhcp(const Json &device)
{
    return text(device, "sDhcp") == "enable";
}

bool hasLink(const Json &state, const Json &device)
{
    const bool joined = text(device, "sNetType") != "WIFI" ||
                        state.at("wifi").at("state") == int(netT::WIFI_CONNECTED);
    return joined && state.at("net").at("cable").value(text(device, "sDevName"), 0) == 0;
}

bool works(const Json &state, const Json &device)
{
    return isPresent(device) && isOn(device) && hasLink(state, device);
}

void takeLease(Json &state, Json &device)
{
    const Json &leases = state["net"]["lease"];
    const auto lease = leases.find(text(device, "sDevName"));
    if (lease == leases.end())
        return;
    device.update(*lease);
    if (text(device, "sAlterDns").empty())
        device["sAlterDns"] = text(device, "sPrefDns");
    const Json &byHand = staticAddress(state, device);
    if (text(byHand, "sPrefDns").empty() && text(byHand, "sAlterDns").empty())
        return;
    for (const char *field : DNS_FIELDS)
        device[field] = byHand[field];
}

void takeStatic(const Json &state, Json &device)
{
    const Json &statics = state["net"]["statics"];
    const auto address = statics.find(text(device, "sDevName"));
    if (address == statics.end())
        return;
    for (const char *field : ADDRESS_FIELDS)
        if (!text(*address, field).empty())
            device[field] = (*address)[field];
}

void dropAddress(Json &device)
{
    for (const char *field : ADDRESS_FIELDS)
        device[field] = "";
}

void keepAsStatic(Json &state, const Json &device)
{
    Json &address = staticAddress(state, device);
    for (const char *field : ADDRESS_FIELDS)
        address[field] = device[field];
}

Json &staticAddress(Json &state, const Json &device)
{
    Json &address = state["net"]["statics"][text(device, "sDevName")];
    if (address.is_null())
        for (const char *field : ADDRESS_FIELDS)
            address[field] = "";
    return address;
}

netT::stAllNetInfo_tag toRecord(const Json &device)
{
    netT::stAllNetInfo_tag record;
    record.sDevName = text(device, "sDevName");
    record.sNetType = text(device, "sNetType");
    record.sDhcp = text(device, "sDhcp");
    record.sMacAddr = text(device, "sMacAddr");
    record.sIpAddr = text(device, "sIpAddr");
    record.sSubnetMask = text(device, "sSubnetMask");
    record.sGateway = text(device, "sGateway");
    const std::string &preferred = text(device, "sPrefDns");
    const std::string &alternate = text(device, "sAlterDns");
    record.sPrefDns = preferred.empty() ? alternate : preferred;
    record.sAlterDns = alternate.empty() ? preferred : alternate;
    record.sFunction = text(device, "sFunction");
    record.bNetNormal = device.at("bNetNormal").get<int>();
    return record;
}

} // namespace sim
