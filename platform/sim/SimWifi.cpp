// netT, Wi-Fi: scanning and joining.
#include "platform/net.h"
#include "platform/sim/NetCall.h"

#include <algorithm>

using sim::Json;
using sim::kindCall;
using sim::panel;
using sim::text;

namespace {

netT::stApInfo_tag toAccessPoint(const Json &ap)
{
    return {ap.at("id").get<int>(), ap.at("level").get<int>(), text(ap, "ssid"), text(ap, "text"),
            ap.at("security").get<int>()};
}

// Security and id of the network come from the last scan.
Json describeNetwork(const Json &aps, const std::string &ssid, const std::string &password)
{
    Json user = {{"ssid", ssid}, {"password", password}, {"security", 4}, {"id", -1}};
    const auto ap = std::find_if(aps.begin(), aps.end(),
                                 [&](const Json &found) { return text(found, "ssid") == ssid; });
    if (ap != aps.end()) {
        user["security"] = ap->at("security");
        user["id"] = ap->at("id");
    }
    return user;
}

} // namespace

namespace netT {

int getAPList(std::vector<stApInfo_tag> &list, bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getAPList", "WIFI", sim::noArgs(), flag, timeoutMs,
                    [&](Json &state, Json &device) -> int {
                        if (!sim::isOn(device))
                            return ERR_FAILED;
                        list.clear();
                        for (const Json &ap : state["wifi"]["aps"])
                            list.push_back(toAccessPoint(ap));
                        return 0;
                    });
}

int getStatus(WIFI_STATE_T &state, bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getStatus", "WIFI", sim::noArgs(), flag, timeoutMs,
                    [&](Json &tree, Json &) {
                        state = static_cast<WIFI_STATE_T>(tree["wifi"]["state"].get<int>());
                        return 0;
                    });
}

int getConnectInfo(stUserInfo_tag &info, bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getConnectInfo", "WIFI", sim::noArgs(), flag, timeoutMs,
                    [&](Json &state, Json &) {
                        const Json &user = state["wifi"]["user"];
                        info = {text(user, "ssid"), text(user, "password"),
                                user["security"].get<int>(), user["id"].get<int>()};
                        return 0;
                    });
}

int setConnectInfo(const std::string &ssid, const std::string &password, bool flag,
                   unsigned int timeoutMs)
{
    return kindCall("netT.setConnectInfo", "WIFI", Json::array({ssid, password}), flag, timeoutMs,
                    [&](Json &state, Json &) -> int {
                        if (ssid.empty() || ssid.size() > 32)
                            return ERR_FAILED;
                        panel().net().keepWifi(state);
                        Json &wifi = state["wifi"];
                        wifi["user"] = describeNetwork(wifi["aps"], ssid, password);
                        return 0;
                    });
}

int connectwifi()
{
    return panel().call("netT.connectwifi", Json(), [](Json &state) -> int {
        if (!sim::serviceRuns(state))
            return ERR_NO_SERVICE;
        Json *device = sim::presentDevice(state, "WIFI");
        if (device == nullptr)
            return ERR_NO_DEVICE;
        if (!sim::isOn(*device))
            return ERR_FAILED;
        panel().net().joinWifi(state, *device);
        return 0;
    });
}

int getSignal(bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getSignal", "WIFI", sim::noArgs(), flag, timeoutMs,
                    [](Json &state, Json &) { return state["wifi"]["signal"].get<int>(); });
}

} // namespace netT
