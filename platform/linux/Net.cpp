// netT without a network service: every request is answered as one to a service that does not run.
#include "platform/net.h"

#include "platform/posix/CloudFile.h"

namespace netT {
namespace {

constexpr int NOT_STARTED = -1; // getConnectedStatus()

} // namespace

int netIsExist(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int netDeviceUp(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int netDeviceDown(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int isNetUp(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int checkEthCableLink(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int startDhcp(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int stopDhcp(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int isNetDeviceDhcp(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int setIp(const std::string &, const std::string &, const std::string &, const std::string &, bool,
          unsigned int)
{
    return ERR_NO_SERVICE;
}
int getIp(const std::string &, std::string &, std::string &, std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int setDns(const std::string &, const std::string &, const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getDns(const std::string &, std::string &, std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getAPList(std::vector<stApInfo_tag> &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getStatus(WIFI_STATE_T &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getConnectInfo(stUserInfo_tag &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int setConnectInfo(const std::string &, const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int connectwifi()
{
    return ERR_NO_SERVICE;
}
int getSignal(bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getCsqSignal(bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getApn(stApnInfo_tag &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int setApn(const stApnInfo_tag &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getCCID(std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int get4gDialUpMode(stNetWorkRegis_tag &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getDevPriority(std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int setDevPriority(const std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getNetServerAddr(std::string &, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int netTping(const std::string &, const std::string &, const std::string &,
             stNetCommuPacketInfo_tag &, bool, int, bool, unsigned int)
{
    return ERR_NO_SERVICE;
}
int getAllNetInfoCallBack(AllNetInfoCallback, void *, bool, unsigned int, bool)
{
    return ERR_NO_SERVICE;
}
int get4gAtInfoCallBackup(AtInfoCallback, void *)
{
    return ERR_NO_SERVICE;
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
