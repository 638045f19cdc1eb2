#include "platform/sim/MediaService.h"

#include "platform/sim/Panel.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace sim {

void MediaService::addDev(const std::vector<PLATFORM::DEV_TYPE_T> &types,
                          const PLATFORM::MediaCallbacks &callbacks, void *context)
{
    listeners_.push_back({callbacks, context});
    for (const PLATFORM::tagDEV_INFO_T &info : plugged_)
        if (std::find(types.begin(), types.end(), info.nType) != types.end())
            post(listeners_.back(), info, true);
}

void MediaService::forgetRegistrations()
{
    listeners_.clear();
    plugged_.clear();
}

void MediaService::insert(int type, const std::string &mountPath)
{
    panel().locked([&](const Json &) {
        unplug(type, mountPath);
        plugged_.push_back({type, mountPath});
        for (const Listener &listener : listeners_)
            post(listener, plugged_.back(), true);
    });
}

void MediaService::remove(int type, const std::string &mountPath)
{
    panel().locked([&](const Json &) {
        unplug(type, mountPath);
        for (const Listener &listener : listeners_)
            post(listener, {type, mountPath}, false);
    });
}

void MediaService::unplug(int type, const std::string &mountPath)
{
    const auto same = [&](const PLATFORM::tagDEV_INFO_T &info) {
        return info.nType == type && info.sMountPath == mountPath;
    };
    plugged_.erase(std::remove_if(plugged_.begin(), plugged_.end(), same), plugged_.end());
}

void MediaService::post(const Listener &listener, const PLATFORM::tagDEV_INFO_T &info, bool added)
{
    const auto callback = added ? listener.callbacks.added : listener.callbacks.removed;
    if (callback != nullptr)
        thread_.post(0ms,
                     [callback, info, context = listener.context] { callback(info, context); });
}

} // namespace sim
