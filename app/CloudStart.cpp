#include "app/CloudStart.h"

#include "platform/board.h"
#include "platform/machine.h"
#include "platform/paths.h"
#include "platform/services.h"

#include <cstdio>

namespace {

constexpr const char *CLOUD_FILE = "/mnt/data/prj/cloud/cloud.xml";
// Stands in for a processor's identifier that cannot be read.
constexpr const char *UNKNOWN_CPU = "3141592653";

// Never stored: whoever copies a panel's files does not get it.
std::string deriveSalt()
{
    std::string cpu;
    if (PLATFORM::CPlatCpu::getCpuId(cpu) != 0)
        cpu = UNKNOWN_CPU;
    std::string salt;
    cbl::md5String(cpu, salt);
    return salt;
}

void print(const netT::CloudConfig &config)
{
    std::printf("AsyncConfig.sUrl = [%s]\n", config.sUrl.c_str());
    std::printf("AsyncConfig.sCertUrl = [%s]\n", config.sCertUrl.c_str());
    std::printf("AsyncConfig.sNtpUrl = [%s]\n", config.sNtpUrl.c_str());
    std::printf("AsyncConfig.nPort = [%d]\n", config.nPort);
    std::printf("AsyncConfig.nCertPort = [%d]\n", config.nCertPort);
    std::printf("AsyncConfig.sDeviceId = [%s]\n", config.sDeviceId.c_str());
    std::printf("AsyncConfig.sSalt = [%s]\n", config.sSalt.c_str());
}

} // namespace

CloudStart::CloudStart(netT::CAsyncClient &client, netT::CAsyncClient::MessageHandler handler,
                       void *context)
    : m_client(client), m_handler(handler), m_pContext(context)
{
}

void CloudStart::run()
{
    if (m_bSettled)
        return;
    netT::CloudConfig config;
    m_nLoadResult = netT::loadCloudXML(panelPath(CLOUD_FILE), config, m_sRegion);
    if (m_nLoadResult < 0) {
        std::printf("loadCloudXML error = %d\n", m_nLoadResult.load());
        return;
    }
    m_bSettled = true;
    const KVCORE::TMachine machine;
    machine.getDeviceId(config.sDeviceId);
    if (machine.enableRemote() == 0)
        return;
    config.sRequestTopic = "kvhmi/CQ/" + config.sDeviceId;
    config.sResponseTopic = "kvhmi/CP/" + config.sDeviceId;
    config.sSalt = deriveSalt();
    print(config);
    m_client.start(config, m_handler, m_pContext);
}
