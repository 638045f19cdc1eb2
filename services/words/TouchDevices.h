// All touch devices of the panel, as they come and go.
#pragma once

#include "services/words/Journal.h"
#include "services/words/TouchDevice.h"

#include <functional>
#include <map>

namespace words {

// Runs in the event loop's thread.
class TouchDevices
{
public:
    // Calls `touched` when something has come from a device, with whether something was pressed,
    // and `lost` when one has gone.
    TouchDevices(sd_event *event, std::function<void(bool pressed)> touched,
                 std::function<void()> lost);

    // Looks for devices that have come.
    void scan();

    void grab(bool on);
    // Takes what has come, without a call of `touched`.
    void readAll();

    bool isEmpty() const { return m_devices.empty(); }
    bool isDown() const;

private:
    static int onReadable(sd_event_source *source, int, unsigned, void *self);
    int add(const std::string &path);
    void read(int fd);

    sd_event *m_event;
    std::function<void(bool)> m_touched;
    std::function<void()> m_lost;
    Trouble m_trouble{"a touch device cannot be opened"};
    std::map<std::string, std::unique_ptr<TouchDevice>> m_devices; // by path
};

} // namespace words
