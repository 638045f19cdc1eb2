#pragma once

#include "platform/board.h"
#include "platform/sim/ServiceThread.h"

#include <chrono>
#include <string>
#include <vector>

namespace sim {

// Hot-plug events. The callbacks run on its one thread, "media", and may block it.
class MediaService
{
public:
    // Registers, and reports what is plugged in already, as far as it is of one of `types`.
    // The panel is locked.
    void addDev(const std::vector<PLATFORM::DEV_TYPE_T> &types,
                const PLATFORM::MediaCallbacks &callbacks, void *context);
    void forgetRegistrations();

    // A device of type code `type` is plugged in or pulled out. Every registration is called,
    // whatever types it asked for. The panel is not locked.
    void insert(int type, const std::string &mountPath);
    void remove(int type, const std::string &mountPath);

    // As ServiceThread's. The panel is not locked.
    bool forget(std::chrono::milliseconds timeout) { return m_thread.forget(timeout); }
    bool stop(std::chrono::milliseconds timeout) { return m_thread.stop(timeout); }

private:
    struct Listener
    {
        PLATFORM::MediaCallbacks callbacks;
        void *context;
    };

    void unplug(int type, const std::string &mountPath);
    void post(const Listener &listener, const PLATFORM::tagDEV_INFO_T &info, bool added);

    ServiceThread m_thread{"media"};
    std::vector<Listener> m_listeners;
    std::vector<PLATFORM::tagDEV_INFO_T> m_plugged;
};

} // namespace sim
