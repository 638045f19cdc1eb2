// netT, 4G.
#include "platform/linux/NetworkClient.h"
#include "platform/linux/NetworkNews.h"
#include "platform/net.h"

using board::asText;
using board::NetworkModem;
using board::NetworkProxy;
using board::toldText;

namespace netT {
namespace {

template <typename Take>
int askModem(bool flag, unsigned int timeoutMs, const Take &take)
{
    return board::askNetwork<NetworkModem>(
        timeoutMs, [&](NetworkProxy &service) { service.GetModem(flag); }, take);
}

} // namespace

int getCsqSignal(bool flag, unsigned int timeoutMs)
{
    return askModem(flag, timeoutMs, [](const NetworkModem &modem) -> int {
        const int csq = std::get<0>(modem);
        return board::isCsq(csq) ? csq : static_cast<int>(ERR_FAILED);
    });
}

int getApn(stApnInfo_tag &apn, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork<board::NetworkApn>(
        timeoutMs, [&](NetworkProxy &service) { service.GetApn(flag); },
        [&](const board::NetworkApn &kept) {
            const auto &[name, authentication, user, password, own] = board::fieldsOf(kept);
            apn = {toldText(name), toldText(authentication), toldText(user), toldText(password),
                   board::toSwitch(own)};
            return 0;
        });
}

int setApn(const stApnInfo_tag &apn, bool flag, unsigned int timeoutMs)
{
    return board::askNetwork(timeoutMs, [&](NetworkProxy &service) {
        service.SetApn({asText(apn.sName), asText(apn.sAuth), asText(apn.sUser),
                        asText(apn.sPassword), apn.sMode == board::toSwitch(true)},
                       flag);
    });
}

int getCCID(std::string &iccid, bool flag, unsigned int timeoutMs)
{
    return askModem(flag, timeoutMs, [&](const NetworkModem &modem) {
        iccid = toldText(std::get<1>(modem));
        return 0;
    });
}

int get4gDialUpMode(stNetWorkRegis_tag &mode, bool flag, unsigned int timeoutMs)
{
    return askModem(flag, timeoutMs, [&](const NetworkModem &modem) {
        mode.nDialUpMode = std::get<4>(modem) ? 1 : 0;
        return 0;
    });
}

int get4gAtInfoCallBackup(AtInfoCallback callback, void *context)
{
    return board::networkNews().addModem(callback, context);
}

} // namespace netT
