// netT, the client of the remote-access cloud.
#include "platform/net.h"
#include "platform/posix/CloudFile.h"
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

// What a test or a scenario has put in place of a file.
void takeFrom(const Json &cloud, netT::CloudConfig &config, std::string &text)
{
    const Json &known = cloud.at("config");
    known.at("sUrl").get_to(config.sUrl);
    known.at("sCertUrl").get_to(config.sCertUrl);
    known.at("sNtpUrl").get_to(config.sNtpUrl);
    known.at("nPort").get_to(config.nPort);
    known.at("nCertPort").get_to(config.nCertPort);
    cloud.at("text").get_to(text);
}

} // namespace

namespace netT {

int loadCloudXML(const std::string &path, CloudConfig &config, std::string &text)
{
    return panel().call("netT.loadCloudXML", Json::array({path}), [&](Json &state) {
        Json &cloud = state["cloud"];
        if (cloud["load"].is_null()) {
            const int result = os::readCloudFile(path, config, text);
            if (result >= 0)
                cloud["text"] = text;
            return result;
        }
        const int ordered = cloud["load"].get<int>();
        if (ordered >= 0)
            takeFrom(cloud, config, text);
        return ordered;
    });
}

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
