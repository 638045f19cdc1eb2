// The PLC download library without a driver: it reads no format, so that the program sends older
// files itself and says of all others that they cannot be read. Nothing can be opened.
#include "platform/plc.h"

namespace {

constexpr int NO_DRIVER = -1;
constexpr int ASKS_NO_PASSWORD = 0;

} // namespace

CLoadPlcInfo::CLoadPlcInfo() = default;

// NOLINTBEGIN(performance-unnecessary-value-param): as the header has them
int CLoadPlcInfo::ReadPlc5VDownLoadInfo(Plc5VDownLoadInfo &, tag &, std::string)
{
    return ERR_NOT_THIS_FORMAT;
}

UpDate5vPlcPro::UpDate5vPlcPro() = default;
UpDate5vPlcPro::~UpDate5vPlcPro() {} // nothing can be open

int UpDate5vPlcPro::Open(SERIALCOMSET)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::Commu()
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::CheckPassword(tagPdata &)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::SetUpLoadPasswd(tagPdata &)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::CheckVer(int)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::StopPLC()
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::ReadPlcVer()
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::DownLoadPro(tagPdata, tagPdata, std::list<PlcProData>)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::DownLoadPara(tagPdata, tagPdata, plcparacomfig_t)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::DownLoadMask(tagPdata, tagPdata)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::DownLoadMemory(std::list<devmemorydataitem_t>)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::DownLoadCamTable(EcamTable_t)
{
    return NO_DRIVER;
}
// NOLINTEND(performance-unnecessary-value-param)
int UpDate5vPlcPro::DownLoadExtension(tag &)
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::StartPLC()
{
    return NO_DRIVER;
}
int UpDate5vPlcPro::Close()
{
    return NO_DRIVER;
}

int isHasPassword(int)
{
    return ASKS_NO_PASSWORD;
}
