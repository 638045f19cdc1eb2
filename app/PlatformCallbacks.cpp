#include "app/PlatformCallbacks.h"

#include "app/MainWin.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

// Lets callbacks use the window until the program ends.
class Gate
{
public:
    bool enter()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_nInside += m_bClosed ? 0 : 1;
        return !m_bClosed;
    }
    void leave()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        --m_nInside;
        m_left.notify_all();
    }
    bool close(int waitMs)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_bClosed = true;
        return m_left.wait_for(lock, std::chrono::milliseconds(waitMs),
                               [this] { return m_nInside == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_left;
    int m_nInside = 0;
    bool m_bClosed = false;
};

// Never destroyed: the platform may call until the process is gone.
Gate &gate()
{
    static auto *theGate = new Gate;
    return *theGate;
}

template <typename Action>
int withWindow(void *context, Action action)
{
    if (context == nullptr || !gate().enter())
        return -1;
    action(static_cast<MainWin *>(context));
    gate().leave();
    return 0;
}

// Hands a hot-plug event to the GUI thread by one of the window's blocking signals.
int reportHotPlug(const PLATFORM::tagDEV_INFO_T &info, void *context,
                  void (MainWin::*signal)(int, std::string))
{
    return withWindow(context,
                      [&](MainWin *window) { emit(window->*signal)(info.nType, info.sMountPath); });
}

} // namespace

bool stopCallbacks(int waitMs)
{
    return gate().close(waitMs);
}

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
    return withWindow(context, [&](MainWin *window) { window->setNetRecords(list); });
}

int OnCloudMessage(const std::string & /*topic*/, const std::string & /*message*/,
                   void * /*context*/)
{
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
