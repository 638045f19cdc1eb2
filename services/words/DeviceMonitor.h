// Says when a touch device or a backlight has come or gone, after udev's rules have been applied to
// it (sd-device of systemd).
#pragma once

#include "services/words/Event.h"

#include <functional>
#include <systemd/sd-device.h>

namespace words {

struct MonitorDeleter
{
    void operator()(sd_device_monitor *monitor) const { sd_device_monitor_unref(monitor); }
};

class DeviceMonitor
{
public:
    // Where there is no udev the journal says so, and nothing ever comes.
    DeviceMonitor(sd_event *event, std::function<void()> changed);

private:
    static int onDevice(sd_device_monitor *, sd_device *device, void *self);
    int start(sd_event *event);

    std::function<void()> m_changed;
    std::unique_ptr<sd_device_monitor, MonitorDeleter> m_monitor;
};

} // namespace words
