#include "platform/sim/MediaService.h"

#include "platform/sim/Panel.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace sim {

void MediaService::addDev(const std::vector<PLATFORM::DEV_TYPE_T> &types,
                          const PLATFORM::MediaCallbacks &callbacks, void *context)
{
    m_listeners.push_back({callbacks, context});
    for (const PLATFORM::tagDEV_INFO_T &info : m_plugged)
        if (std::find(types.begin(), types.end(), info.nType) != types.end())
            post(m_listeners.back(), info, true);
}

void MediaService::forgetRegistrations()
{
    m_listeners.clear();
    m_plugged.clear();
}

void MediaService::insert(int type, const std::string &mountPath)
{
    panel().locked([&](const Json &) {
        unplug(type, mountPath);
        m_plugged.push_back({type, mountPath});
        for (const Listener &listener : m_listeners)
            post(listener, m_plugged.back(), true);
    });
}

void MediaService::remove(int type, const std::string &mountPath)
{
    panel().locked([&](const Json &) {
        unplug(type, mountPath);
        for (const Listener &listener : m_listeners)
            post(listener, {type, mountPath}, false);
    });
}

void MediaService::unplug(int type, const std::string &mountPath)
{
    const auto same = [&](const PLATFORM::tagDEV_INFO_T &info) {
        return info.nType == type && info.sMountPath == mountPath;
    };
    m_plugged.erase(std::remove_if(m_plugged.begin(), m_plugged.end(), same), m_plugged.end());
}

void MediaService::post(const Listener &listener, const PLATFORM::tagDEV_INFO_T &info, bool added)
{
    const auto callback = added ? listener.callbacks.added : listener.callbacks.removed;
    if (callback != nullptr)
        m_thread.post(0ms,
                      [callback, info, context = listener.context] { callback(info, context); });
}

} // namespace sim
