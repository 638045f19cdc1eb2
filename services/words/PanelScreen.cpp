#include "services/words/PanelScreen.h"

namespace words {
namespace {

constexpr std::uint64_t ACCURACY = 100'000; // us
constexpr int AFTER_ANSWERS = SD_EVENT_PRIORITY_NORMAL + 1;

} // namespace

PanelScreen::PanelScreen(sd_event *event, std::function<void()> touched)
    : m_event(event),
      m_touched(std::move(touched)),
      m_devices(
          event, [this](bool pressed) { onTouch(pressed); }, [this] { onDevices(); }),
      m_saver(*this, now()),
      m_monitor(event, [this] { onDevices(); })
{
    sd_event_source *source = nullptr;
    require(sd_event_add_time(event, &source, CLOCK_MONOTONIC, 0, ACCURACY, onDue, this), "timer");
    m_due.reset(source);
    require(sd_event_add_defer(event, &source, onApply, this), "brightness");
    m_apply.reset(source);
    sd_event_source_set_priority(source, AFTER_ANSWERS);
    m_backlight.setDark(false); // if the service ended while it was dark
    onDevices();
}

PanelScreen::~PanelScreen()
{
    if (m_saver.isDark())
        m_backlight.setDark(false);
}

void PanelScreen::setBrightness(unsigned percent)
{
    m_percent = percent;
    sd_event_source_set_enabled(m_apply.get(), SD_EVENT_ONESHOT);
}

void PanelScreen::setOffTime(unsigned seconds)
{
    m_saver.setTime(seconds, now());
    arm();
}

bool PanelScreen::setDark(bool dark)
{
    return m_backlight.setDark(dark);
}

void PanelScreen::grab(bool on)
{
    m_devices.grab(on);
}

bool PanelScreen::isPressed()
{
    m_devices.readAll();
    return m_devices.isDown();
}

void PanelScreen::onTouch(bool pressed)
{
    m_saver.touched(pressed, m_devices.isDown(), now());
    arm();
    m_touched();
}

void PanelScreen::onDevices()
{
    m_devices.scan();
    m_saver.setDevices(!m_devices.isEmpty(), m_devices.isDown(), now());
    setBrightness(m_percent);
    arm();
}

// A touch does not move a timer that is set already: the timer finds that it is early, and is set
// again.
void PanelScreen::arm()
{
    const auto due = m_saver.due();
    int enabled = SD_EVENT_OFF;
    sd_event_source_get_enabled(m_due.get(), &enabled);
    std::uint64_t set = 0;
    sd_event_source_get_time(m_due.get(), &set);
    if (!due)
        sd_event_source_set_enabled(m_due.get(), SD_EVENT_OFF);
    else if (enabled == SD_EVENT_OFF || *due < set) {
        sd_event_source_set_time(m_due.get(), *due);
        sd_event_source_set_enabled(m_due.get(), SD_EVENT_ONESHOT);
    }
}

std::uint64_t PanelScreen::now() const
{
    std::uint64_t time = 0;
    sd_event_now(m_event, CLOCK_MONOTONIC, &time);
    return time;
}

int PanelScreen::onDue(sd_event_source *, std::uint64_t, void *self)
{
    auto *screen = static_cast<PanelScreen *>(self);
    screen->m_saver.tick(screen->now());
    screen->arm();
    return 0;
}

int PanelScreen::onApply(sd_event_source *, void *self)
{
    auto *screen = static_cast<PanelScreen *>(self);
    screen->m_backlight.setBrightness(screen->m_percent);
    return 0;
}

} // namespace words
