// netT, devices, addresses, preferred link: each a call of the network service.
#include "platform/net.h"

#include "platform/linux/NetworkClient.h"
#include "platform/linux/NetworkNews.h"

#include <algorithm>

using board::asText;
using board::NetworkProxy;
using board::NetworkRecord;

namespace netT {
namespace {

constexpr int NO = 1; // of isNetUp() and isNetDeviceDhcp(), which answer a yes by 0
constexpr int ALL_LOST = 100;
// A ping is over that much earlier than its caller gives up, so that he hears of it.
constexpr unsigned int ANSWER_SHARE = 10;
constexpr unsigned int ANSWER_MS = 500;

template <typename Take>
int askRecord(const std::string &device, bool flag, unsigned int timeoutMs, const Take &take)
{
    return board::askNetwork<NetworkRecord>(
        timeoutMs, [&](NetworkProxy &service) { service.GetDevice(asText(device), flag); }, take);
}

int switchDevice(const std::string &device, bool on, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(
        timeoutMs, [&](NetworkProxy &service) { service.SwitchDevice(asText(device), on, flag); });
}

unsigned int pingTime(unsigned int timeoutMs)
{
    return timeoutMs - std::min(timeoutMs / ANSWER_SHARE, ANSWER_MS);
}

int takeTimes(const board::NetworkTimes &times, stNetCommuPacketInfo_tag &statistics)
{
    const auto &[longest, shortest, average, lost] = board::fieldsOf(times);
    if (std::min({longest, shortest, average, lost}) < 0 || lost >= ALL_LOST)
        return ERR_FAILED;
    statistics = {longest, shortest, average, lost};
    return 0;
}

bool isKind(const std::string &kind)
{
    return kind == "ETH" || kind == "WIFI" || kind == "4G";
}

} // namespace

int netIsExist(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return askRecord(device, flag, timeoutMs, [](const NetworkRecord &) { return 0; });
}

int netDeviceUp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return switchDevice(device, true, flag, timeoutMs);
}

int netDeviceDown(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return switchDevice(device, false, flag, timeoutMs);
}

int isNetUp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return askRecord(device, flag, timeoutMs, [](const NetworkRecord &record) {
        return std::get<board::RECORD_UP>(record) ? 0 : NO;
    });
}

int checkEthCableLink(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return askRecord(device, flag, timeoutMs, [](const NetworkRecord &record) -> int {
        return std::get<board::RECORD_LINKED>(record) ? 0 : ERR_FAILED;
    });
}

int startDhcp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(timeoutMs,
                             [&](NetworkProxy &service) { service.UseDhcp(asText(device), flag); });
}

int stopDhcp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(
        timeoutMs, [&](NetworkProxy &service) { service.KeepAddress(asText(device), flag); });
}

int isNetDeviceDhcp(const std::string &device, bool flag, unsigned int timeoutMs)
{
    return askRecord(device, flag, timeoutMs, [](const NetworkRecord &record) {
        return std::get<board::RECORD_DHCP>(record) ? 0 : NO;
    });
}

int setIp(const std::string &device, const std::string &ip, const std::string &mask,
          const std::string &gateway, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(timeoutMs, [&](NetworkProxy &service) {
        service.SetAddress(asText(device), asText(ip), asText(mask), asText(gateway), flag);
    });
}

int getIp(const std::string &device, std::string &ip, std::string &mask, std::string &gateway,
          bool flag, unsigned int timeoutMs)
{
    return askRecord(device, flag, timeoutMs, [&](const NetworkRecord &record) {
        ip = board::toldText(std::get<board::RECORD_ADDRESS>(record));
        mask = board::toldText(std::get<board::RECORD_MASK>(record));
        gateway = board::toldText(std::get<board::RECORD_GATEWAY>(record));
        return 0;
    });
}

int setDns(const std::string &device, const std::string &preferred, const std::string &alternate,
           bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(timeoutMs, [&](NetworkProxy &service) {
        service.SetDns(asText(device), asText(preferred), asText(alternate), flag);
    });
}

int getDns(const std::string &device, std::string &preferred, std::string &alternate, bool flag,
           unsigned int timeoutMs)
{
    return askRecord(device, flag, timeoutMs, [&](const NetworkRecord &record) {
        preferred = board::toldText(std::get<board::RECORD_DNS>(record));
        alternate = board::toldText(std::get<board::RECORD_SECOND_DNS>(record));
        return 0;
    });
}

int getDevPriority(std::string &kind, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork<std::string>(
        timeoutMs, [&](NetworkProxy &service) { service.GetPreferred(flag); },
        [&](const std::string &preferred) -> int {
            if (!isKind(preferred))
                return ERR_FAILED;
            kind = preferred;
            return 0;
        });
}

int setDevPriority(const std::string &kind, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(
        timeoutMs, [&](NetworkProxy &service) { service.SetPreferred(asText(kind), flag); });
}

int netTping(const std::string &device, const std::string &target, const std::string &fallback,
             stNetCommuPacketInfo_tag &statistics, bool, int count, bool flag,
             unsigned int timeoutMs)
{
    const std::string &host = target.empty() ? fallback : target;
    return board::askNetwork<board::NetworkTimes>(
        timeoutMs,
        [&](NetworkProxy &service) {
            service.Ping(asText(device), asText(host), count, pingTime(timeoutMs), flag);
        },
        [&](const board::NetworkTimes &times) { return takeTimes(times, statistics); });
}

int getAllNetInfoCallBack(AllNetInfoCallback callback, void *context, bool flag,
                          unsigned int timeoutMs, bool repeat)
{
    return board::networkNews().addRecords(callback, context, flag, timeoutMs, repeat);
}

} // namespace netT
