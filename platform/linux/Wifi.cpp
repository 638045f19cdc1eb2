// netT, Wi-Fi.
#include "platform/linux/NetworkClient.h"
#include "platform/net.h"

using board::NetworkBytes;
using board::NetworkProxy;
using board::NetworkWifi;

namespace netT {
namespace {

constexpr unsigned int JOIN_MS = 5000; // for the service to take the request
constexpr std::size_t LONGEST_NAME = 32;
constexpr std::size_t LONGEST_PASSWORD = 64; // hexadecimal digits of a WPA key
constexpr std::size_t MOST_STATIONS = 1024;
constexpr int HIGHEST_LEVEL = 100;

std::string toText(const NetworkBytes &bytes)
{
    return {bytes.begin(), bytes.end()};
}

NetworkBytes toBytes(const std::string &text)
{
    return {text.begin(), text.end()};
}

bool isLevel(int level)
{
    return level >= 0 && level <= HIGHEST_LEVEL;
}

// What cannot be a network in range is left out.
std::vector<stApInfo_tag> toList(const board::NetworkStations &stations)
{
    std::vector<stApInfo_tag> list;
    for (const board::NetworkStation &station : stations) {
        const auto &[id, level, name, note, security] = board::fieldsOf(station);
        const bool isSound = isLevel(level) && name.size() <= LONGEST_NAME && security >= 0;
        if (isSound && list.size() < MOST_STATIONS)
            list.push_back({id, level, toText(name), board::toldText(note), security});
    }
    return list;
}

template <typename Take>
int askWifi(bool flag, unsigned int timeoutMs, const Take &take)
{
    return board::askNetwork<NetworkWifi>(
        timeoutMs, [&](NetworkProxy &service) { service.GetWifi(flag); }, take);
}

} // namespace

int getAPList(std::vector<stApInfo_tag> &list, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork<board::NetworkStations>(
        timeoutMs, [&](NetworkProxy &service) { service.GetAccessPoints(flag); },
        [&](const board::NetworkStations &stations) {
            list = toList(stations);
            return 0;
        });
}

int getStatus(WIFI_STATE_T &state, bool flag, unsigned int timeoutMs)
{
    return askWifi(flag, timeoutMs, [&](const NetworkWifi &wifi) -> int {
        const int told = std::get<0>(wifi);
        if (told < WIFI_IDLE || told > WIFI_CONNECTED)
            return ERR_FAILED;
        state = static_cast<WIFI_STATE_T>(told);
        return 0;
    });
}

int getConnectInfo(stUserInfo_tag &info, bool flag, unsigned int timeoutMs)
{
    return askWifi(flag, timeoutMs, [&](const NetworkWifi &wifi) -> int {
        const auto &[state, name, password, security, id, level] = board::fieldsOf(wifi);
        if (name.size() > LONGEST_NAME || password.size() > LONGEST_PASSWORD)
            return ERR_FAILED;
        info = {toText(name), toText(password), security, id};
        return 0;
    });
}

int setConnectInfo(const std::string &ssid, const std::string &password, bool flag,
                   unsigned int timeoutMs)
{
    return board::askNetwork(timeoutMs, [&](NetworkProxy &service) {
        service.SetNetwork(toBytes(ssid), toBytes(password), flag);
    });
}

int connectwifi()
{
    return board::askNetwork(JOIN_MS, [](NetworkProxy &service) { service.JoinNetwork(); });
}

int getSignal(bool flag, unsigned int timeoutMs)
{
    return askWifi(flag, timeoutMs, [](const NetworkWifi &wifi) -> int {
        const int level = std::get<5>(wifi);
        return isLevel(level) ? level : static_cast<int>(ERR_FAILED);
    });
}

} // namespace netT
