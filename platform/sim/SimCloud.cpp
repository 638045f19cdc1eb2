// netT, the client of the remote-access cloud.
#include "platform/net.h"
#include "platform/sim/Panel.h"

using sim::Json;
using sim::panel;

namespace {

constexpr int NOT_STARTED = -1;
constexpr int CONNECTED = 1;

Json toJson(const netT::CloudConfig &config)
{
    return {{"sUrl", config.sUrl},
            {"sCertUrl", config.sCertUrl},
            {"sNtpUrl", config.sNtpUrl},
            {"nPort", config.nPort},
            {"nCertPort", config.nCertPort},
            {"sDeviceId", config.sDeviceId},
            {"sSalt", config.sSalt},
            {"sRequestTopic", config.sRequestTopic},
            {"sResponseTopic", config.sResponseTopic}};
}

} // namespace

namespace netT {

CAsyncClient::CAsyncClient()
{
    panel().locked([](Json &state) { state["cloud"]["started"] = false; });
}

CAsyncClient::~CAsyncClient()
{
    // What was started stays to be seen in the state that the program leaves behind.
}

// No message ever arrives on the simulated cloud's topics, so the handler is not kept.
int CAsyncClient::start(const CloudConfig &config, MessageHandler /*handler*/, void * /*context*/)
{
    const Json wanted = toJson(config);
    return panel().call("netT.CAsyncClient.start", Json::array({wanted}), [&](Json &state) {
        Json &cloud = state["cloud"];
        cloud["started"] = true;
        cloud["config"] = wanted;
        if (cloud["status"] == NOT_STARTED) // a stage that was set before holds
            cloud["status"] = CONNECTED;
        return 0;
    });
}

int CAsyncClient::getConnectedStatus() const
{
    return panel().call("netT.CAsyncClient.getConnectedStatus", Json(),
                        [](Json &state) { return state["cloud"]["status"].get<int>(); });
}

} // namespace netT
