// Hot-plug: what is plugged in, looked at anew at every event, and the difference told to the
// program on one thread, "media".
#pragma once

#include "platform/linux/Devices.h"

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace board {

// The folder below which udev's rule has each partition of a U-disk mounted, a folder each.
constexpr const char *UDISK_FOLDER = "/run/sysset/usb";

// What is in `now` and not in `before`, by key and kind, in the order of `now`.
std::vector<Plugged> newIn(const std::vector<Plugged> &now, const std::vector<Plugged> &before);

// The U-disks among the mounts of a mountinfo text.
std::vector<Plugged> udisksIn(const std::string &mountinfo);

class HotPlug
{
public:
    HotPlug() = default;
    HotPlug(const HotPlug &) = delete;
    HotPlug &operator=(const HotPlug &) = delete;

    // See CPlatMedia::addDev.
    int add(const std::vector<PLATFORM::DEV_TYPE_T> &types,
            const PLATFORM::MediaCallbacks &callbacks, void *context);

private:
    // Owned by the thread, but for those that wait.
    struct Listener
    {
        std::vector<PLATFORM::DEV_TYPE_T> types;
        PLATFORM::MediaCallbacks callbacks;
        void *context = nullptr;
        std::vector<Plugged> told;
    };

    bool start();
    void run();
    std::vector<Plugged> look();
    void takeNewListeners();
    static void tell(Listener &listener, const std::vector<Plugged> &now);

    std::mutex m_mutex;
    std::vector<Listener> m_waiting; // guarded
    int m_wake = -1;                 // an eventfd(2); guarded until the thread runs
    std::deque<Listener> m_listeners;
    Devices *m_devices = nullptr;
    int m_mountinfo = -1;
};

} // namespace board
