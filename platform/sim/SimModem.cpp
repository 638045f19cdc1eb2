// netT, 4G: the modem.
#include "platform/net.h"
#include "platform/sim/NetCall.h"

using sim::Json;
using sim::kindCall;
using sim::panel;
using sim::text;

namespace netT {

int getCsqSignal(bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getCsqSignal", "4G", sim::noArgs(), flag, timeoutMs,
                    [](Json &state, Json &) { return state["modem"]["csq"].get<int>(); });
}

int getApn(stApnInfo_tag &apn, bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getApn", "4G", sim::noArgs(), flag, timeoutMs, [&](Json &state, Json &) {
        const Json &known = state["modem"]["apn"];
        apn = {text(known, "name"), text(known, "auth"), text(known, "user"),
               text(known, "password"), text(known, "mode")};
        return 0;
    });
}

int setApn(const stApnInfo_tag &apn, bool flag, unsigned int timeoutMs)
{
    const Json wanted = {{"name", apn.sName},
                         {"auth", apn.sAuth},
                         {"user", apn.sUser},
                         {"password", apn.sPassword},
                         {"mode", apn.sMode}};
    return kindCall("netT.setApn", "4G", Json::array({wanted}), flag, timeoutMs,
                    [&](Json &state, Json &) {
                        state["modem"]["apn"] = wanted;
                        return 0;
                    });
}

int getCCID(std::string &iccid, bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.getCCID", "4G", sim::noArgs(), flag, timeoutMs, [&](Json &state, Json &) {
        iccid = text(state["modem"], "ccid");
        return 0;
    });
}

int get4gDialUpMode(stNetWorkRegis_tag &mode, bool flag, unsigned int timeoutMs)
{
    return kindCall("netT.get4gDialUpMode", "4G", sim::noArgs(), flag, timeoutMs,
                    [&](Json &state, Json &) {
                        mode.nDialUpMode = state["modem"]["dialUp"].get<int>();
                        return 0;
                    });
}

int get4gAtInfoCallBackup(AtInfoCallback callback, void *context)
{
    return panel().call("netT.get4gAtInfoCallBackup", Json(), [&](Json &state) -> int {
        if (!sim::serviceRuns(state))
            return ERR_NO_SERVICE;
        if (callback == nullptr)
            return ERR_FAILED;
        panel().net().registerAt(callback, context);
        return 0;
    });
}

} // namespace netT
