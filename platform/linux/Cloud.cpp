// netT, cloud: its configuration, and the client, which is one for the process.
#include "platform/linux/CloudLink.h"
#include "platform/linux/Journal.h"
#include "platform/net.h"
#include "platform/paths.h"
#include "platform/posix/CloudFile.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace netT {
namespace {

constexpr std::size_t LONGEST_DEVICE_ID = 64;                       // the service's
constexpr const char *CLOUD_FILE = "/mnt/data/prj/cloud/cloud.xml"; // where a project brings it

// It is the client's name, a part of both topics, and a user's name before a colon.
bool isDeviceId(const std::string &id)
{
    return !id.empty() && id.size() <= LONGEST_DEVICE_ID &&
           std::all_of(id.begin(), id.end(), [](char c) {
               return c > ' ' && c <= '~' &&
                      std::string_view("+#:").find(c) == std::string_view::npos;
           });
}

int refuse(const char *why)
{
    board::journal(board::Severity::Warning, std::string("no cloud: ") + why);
    return ERR_FAILED;
}

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
CAsyncClient::~CAsyncClient()
{
    board::cloudLink().detach();
}

int CAsyncClient::start(const CloudConfig &config, MessageHandler handler, void *context)
{
    std::string trust;
    if (os::readCloudTrust(panelPath(CLOUD_FILE), trust) != 0)
        return refuse("its file, or the resource file, cannot be read");
    if (!isDeviceId(config.sDeviceId))
        return refuse("the device id is too long, or has signs that none may have");
    return board::cloudLink().start(config, std::move(trust), handler, context) ? 0 : ERR_FAILED;
}

int CAsyncClient::getConnectedStatus() const
{
    return board::cloudLink().status();
}

} // namespace netT
