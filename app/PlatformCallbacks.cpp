#include "app/PlatformCallbacks.h"

#include "app/MainWin.h"

namespace {

// Hands a hot-plug event to the GUI thread by one of the window's blocking signals.
int reportHotPlug(const PLATFORM::tagDEV_INFO_T &info, void *context,
                  void (MainWin::*signal)(int, std::string))
{
    if (context == nullptr)
        return -1;
    auto *window = static_cast<MainWin *>(context);
    emit(window->*signal)(info.nType, info.sMountPath);
    window->awaitHotPlug();
    return 0;
}

} // namespace

int OnUdiskAdd(const PLATFORM::tagDEV_INFO_T &info, void *context)
{
    return reportHotPlug(info, context, &MainWin::sgl_UDevInput);
}

int OnUdiskRemove(const PLATFORM::tagDEV_INFO_T &info, void *context)
{
    return reportHotPlug(info, context, &MainWin::sgl_UDevOutput);
}

int getAllNetInfo(std::vector<netT::stAllNetInfo_tag> &list, void *context)
{
    if (context == nullptr)
        return -1;
    static_cast<MainWin *>(context)->setNetRecords(list);
    return 0;
}

int OnCloudMessage(const std::string & /*topic*/, const std::string & /*message*/,
                   void * /*context*/)
{
    return 0;
}

[[gnu::hot]] int Buzzer_Thread(void *)
{
    PLATFORM::CPlatBuzzer::runBeep();
    return 0;
}

int CheckTarnicloud_Thread(void *window)
{
    static_cast<MainWin *>(window)->checkCloud();
    return 0;
}
