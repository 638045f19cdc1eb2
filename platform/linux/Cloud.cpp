// netT, cloud: its configuration; there is no client yet, and no service that would be one.
#include "platform/net.h"
#include "platform/paths.h"
#include "platform/posix/CloudFile.h"

namespace netT {
namespace {

constexpr const char *CLOUD_FILE = "/mnt/data/prj/cloud/cloud.xml"; // where a project brings it
constexpr int NOT_STARTED = -1;                                     // getConnectedStatus()

} // namespace

int getNetServerAddr(std::string &address, bool, unsigned int)
{
    CloudConfig config;
    std::string region;
    if (os::readCloudFile(panelPath(CLOUD_FILE), config, region) != 0)
        return ERR_FAILED;
    address = config.sUrl;
    return 0;
}

int loadCloudXML(const std::string &path, CloudConfig &config, std::string &text)
{
    return os::readCloudFile(path, config, text);
}

CAsyncClient::CAsyncClient() = default;
CAsyncClient::~CAsyncClient() {} // nothing has been started

int CAsyncClient::start(const CloudConfig &, MessageHandler, void *)
{
    return ERR_NO_SERVICE;
}

int CAsyncClient::getConnectedStatus() const
{
    return NOT_STARTED;
}

} // namespace netT
