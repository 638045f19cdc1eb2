// netT, devices and addresses: what the network service answers.
#include "platform/net.h"
#include "platform/posix/Ipv4.h"
#include "platform/sim/NetCall.h"

using sim::deviceCall;
using sim::Json;
using sim::netCall;
using sim::panel;
using sim::text;

namespace {

int requestSwitch(const char *op, const std::string &name, bool on, bool flag,
                  unsigned int timeoutMs)
{
    return deviceCall(op, name, sim::noArgs(), flag, timeoutMs, [&](Json &, Json &) {
        panel().net().switchDevice(name, on);
        return 0;
    });
}

// What a ping to `target` brings: the entry of its own, else the one for all.
const Json *pingOutcome(const Json &state, const std::string &target)
{
    const Json &outcomes = state.at("net").at("ping");
    for (const std::string &key : {target, std::string("*")}) {
        const auto outcome = outcomes.find(key);
        if (outcome != outcomes.end())
            return &*outcome;
    }
    return nullptr;
}

int ping(const Json &state, const Json &device, const std::string &target,
         netT::stNetCommuPacketInfo_tag &statistics)
{
    const Json *outcome = pingOutcome(state, target);
    if (outcome == nullptr || !sim::works(state, device) || text(device, "sIpAddr").empty())
        return netT::ERR_FAILED;
    if (outcome->is_number())
        return outcome->get<int>();
    const int lost = outcome->at("lost").get<int>();
    if (lost == 100)
        return netT::ERR_FAILED;
    statistics = {outcome->at("max").get<int>(), outcome->at("min").get<int>(),
                  outcome->at("avg").get<int>(), lost};
    return 0;
}

} // namespace

namespace netT {

int netIsExist(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.netIsExist", device, sim::noArgs(), flag, timeoutMs,
                      [](Json &, Json &) { return 0; });
}

int netDeviceUp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return requestSwitch("netT.netDeviceUp", device, true, flag, timeoutMs);
}

int netDeviceDown(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return requestSwitch("netT.netDeviceDown", device, false, flag, timeoutMs);
}

int isNetUp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.isNetUp", device, sim::noArgs(), flag, timeoutMs,
                      [&](Json &state, Json &dev) {
                          return state["net"]["up"].value(device, sim::isOn(dev)) ? 0 : 1;
                      });
}

int checkEthCableLink(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.checkEthCableLink", device, sim::noArgs(), flag, timeoutMs,
                      [&](Json &state, Json &dev) {
                          const int cable = state["net"]["cable"].value(device, 0);
                          return cable == 0 && !sim::hasLink(state, dev) ? ERR_FAILED : cable;
                      });
}

int startDhcp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.startDhcp", device, sim::noArgs(), flag, timeoutMs,
                      [&](Json &state, Json &dev) {
                          dev["sDhcp"] = "enable";
                          state["net"]["statics"].erase(device);
                          panel().net().refresh(state, dev);
                          return 0;
                      });
}

int stopDhcp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.stopDhcp", device, sim::noArgs(), flag, timeoutMs,
                      [](Json &state, Json &dev) {
                          if (sim::usesDhcp(dev))
                              sim::keepAsStatic(state, dev);
                          dev["sDhcp"] = "disable";
                          panel().net().refresh(state, dev);
                          return 0;
                      });
}

int isNetDeviceDhcp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.isNetDeviceDhcp", device, sim::noArgs(), flag, timeoutMs,
                      [](Json &, Json &dev) { return sim::usesDhcp(dev) ? 0 : 1; });
}

int setIp(const std::string &device, const std::string &ip, const std::string &mask,
          const std::string &gateway, bool flag, unsigned int timeoutMs)
{
    const Json args = {ip, mask, gateway};
    return deviceCall(
        "netT.setIp", device, args, flag, timeoutMs, [&](Json &state, Json &dev) -> int {
            if (!os::checkAddress(ip, mask, gateway))
                return ERR_FAILED;
            const Json address = {{"sIpAddr", ip}, {"sSubnetMask", mask}, {"sGateway", gateway}};
            if (sim::usesDhcp(dev))
                sim::keepAsStatic(state, dev);
            sim::staticAddress(state, dev).update(address);
            dev["sDhcp"] = "disable";
            panel().net().refresh(state, dev);
            return 0;
        });
}

int getIp(const std::string &device, std::string &ip, std::string &mask, std::string &gateway,
          bool flag, unsigned int timeoutMs)
{
    return deviceCall("netT.getIp", device, sim::noArgs(), flag, timeoutMs, [&](Json &, Json &dev) {
        ip = text(dev, "sIpAddr");
        mask = text(dev, "sSubnetMask");
        gateway = text(dev, "sGateway");
        return 0;
    });
}

int setDns(const std::string &device, const std::string &preferred, const std::string &alternate,
           bool flag, unsigned int timeoutMs)
{
    const Json args = {preferred, alternate};
    return deviceCall("netT.setDns", device, args, flag, timeoutMs,
                      [&](Json &state, Json &dev) -> int {
                          if (!os::isServerOrEmpty(preferred) || !os::isServerOrEmpty(alternate))
                              return ERR_FAILED;
                          const Json servers = {{"sPrefDns", preferred}, {"sAlterDns", alternate}};
                          sim::staticAddress(state, dev).update(servers);
                          if (sim::isOn(dev))
                              dev.update(servers);
                          panel().net().recordsChanged();
                          return 0;
                      });
}

int getDns(const std::string &device, std::string &preferred, std::string &alternate, bool flag,
           unsigned int timeoutMs)
{
    return deviceCall("netT.getDns", device, sim::noArgs(), flag, timeoutMs,
                      [&](Json &, Json &dev) {
                          const stAllNetInfo_tag record = sim::toRecord(dev);
                          preferred = record.sPrefDns;
                          alternate = record.sAlterDns;
                          return 0;
                      });
}

int getDevPriority(std::string &kind, bool flag, unsigned int timeoutMs)
{
    return netCall("netT.getDevPriority", sim::noArgs(), flag, timeoutMs, [&](Json &state) {
        kind = text(state["net"], "priority");
        return 0;
    });
}

int setDevPriority(const std::string &kind, bool flag, unsigned int timeoutMs)
{
    return netCall("netT.setDevPriority", Json::array({kind}), flag, timeoutMs,
                   [&](Json &state) -> int {
                       if (kind != "ETH" && kind != "WIFI" && kind != "4G")
                           return ERR_FAILED;
                       state["net"]["priority"] = kind;
                       return 0;
                   });
}

int getNetServerAddr(std::string &address, bool flag, unsigned int timeoutMs)
{
    return netCall("netT.getNetServerAddr", sim::noArgs(), flag, timeoutMs, [&](Json &state) {
        address = text(state["net"], "serverAddr");
        return 0;
    });
}

int netTping(const std::string &device, const std::string &target, const std::string &fallback,
             stNetCommuPacketInfo_tag &statistics, bool quiet, int count, bool flag,
             unsigned int timeoutMs)
{
    const Json args = {target, fallback, quiet, count};
    return deviceCall("netT.netTping", device, args, flag, timeoutMs, [&](Json &state, Json &dev) {
        return ping(state, dev, target.empty() ? fallback : target, statistics);
    });
}

int getAllNetInfoCallBack(AllNetInfoCallback callback, void *context, bool flag,
                          unsigned int timeoutMs, bool repeat)
{
    const Json args = {flag, timeoutMs, repeat};
    return panel().callWithin("netT.getAllNetInfoCallBack", args, timeoutMs, ERR_TIMEOUT,
                              [&](Json &state) -> int {
                                  if (!sim::serviceRuns(state))
                                      return ERR_NO_SERVICE;
                                  if (callback == nullptr)
                                      return ERR_FAILED;
                                  panel().net().registerRecords(callback, context, repeat);
                                  return 0;
                              });
}

} // namespace netT
