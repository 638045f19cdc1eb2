#include "app/PlatformCallbacks.h"

#include "app/MainWin.h"

int OnUdiskAdd(const PLATFORM::tagDEV_INFO_T &info, void *context)
{
    if (context == nullptr)
        return -1;
    auto *window = static_cast<MainWin *>(context);
    emit window->sgl_UDevInput(info.nType, info.sMountPath);
    window->awaitHotPlug();
    return 0;
}

int OnUdiskRemove(const PLATFORM::tagDEV_INFO_T &info, void *context)
{
    if (context == nullptr)
        return -1;
    auto *window = static_cast<MainWin *>(context);
    emit window->sgl_UDevOutput(info.nType, info.sMountPath);
    window->awaitHotPlug();
    return 0;
}

int getAllNetInfo(std::vector<netT::stAllNetInfo_tag> &list, void *context)
{
    if (context == nullptr)
        return -1;
    static_cast<MainWin *>(context)->setNetRecords(list);
    return 0;
}

int Buzzer_Thread(void *)
{
    PLATFORM::CPlatBuzzer::runBeep();
    return 0;
}

int CheckTarnicloud_Thread(void *window)
{
    static_cast<MainWin *>(window)->checkCloud();
    return 0;
}
