#include "services/words/DeviceMonitor.h"

#include "services/words/Journal.h"

namespace words {

DeviceMonitor::DeviceMonitor(sd_event *event, std::function<void()> changed)
    : m_changed(std::move(changed))
{
    const int result = start(event);
    if (result < 0)
        warn("devices that come later are not seen: " + reason(-result));
}

int DeviceMonitor::start(sd_event *event)
{
    sd_device_monitor *monitor = nullptr;
    int result = sd_device_monitor_new(&monitor);
    m_monitor.reset(monitor);
    for (const char *subsystem : {"input", "backlight"}) {
        if (result >= 0)
            result =
                sd_device_monitor_filter_add_match_subsystem_devtype(monitor, subsystem, nullptr);
    }
    if (result >= 0)
        result = sd_device_monitor_attach_event(monitor, event);
    return result < 0 ? result : sd_device_monitor_start(monitor, onDevice, this);
}

// A backlight also says each change of its brightness.
int DeviceMonitor::onDevice(sd_device_monitor *, sd_device *device, void *self)
{
    sd_device_action_t action = SD_DEVICE_CHANGE;
    sd_device_get_action(device, &action);
    if (action != SD_DEVICE_CHANGE)
        static_cast<DeviceMonitor *>(self)->m_changed();
    return 0;
}

} // namespace words
