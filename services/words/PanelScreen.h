// The panel's screen: brightness, darkness after a time without a touch, waking.
#pragma once

#include "services/words/Backlight.h"
#include "services/words/DeviceMonitor.h"
#include "services/words/ScreenSaver.h"
#include "services/words/TouchDevices.h"

namespace words {

// Runs in the event loop's thread.
class PanelScreen : private Screen
{
public:
    // Lights the screen. `touched` is called at each touch.
    PanelScreen(sd_event *event, std::function<void()> touched);
    // Lights it again.
    ~PanelScreen() override;
    PanelScreen(const PanelScreen &) = delete;
    PanelScreen &operator=(const PanelScreen &) = delete;

    // Percent; is done when the loop has nothing else to do, once for all changes until then.
    void setBrightness(unsigned percent);

    // Seconds without a touch until the screen goes dark; 0 leaves it on.
    void setOffTime(unsigned seconds);

private:
    bool setDark(bool dark) override;
    void grab(bool on) override;
    bool isPressed() override;

    void onTouch(bool pressed);
    void onDevices();
    void arm();
    std::uint64_t now() const;
    static int onDue(sd_event_source *, std::uint64_t, void *self);
    static int onApply(sd_event_source *, void *self);

    sd_event *m_event;
    std::function<void()> m_touched;
    Backlight m_backlight;
    TouchDevices m_devices;
    ScreenSaver m_saver;
    DeviceMonitor m_monitor;
    Source m_due;
    Source m_apply;
    unsigned m_percent = 100;
};

} // namespace words
