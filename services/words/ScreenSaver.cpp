#include "services/words/ScreenSaver.h"

namespace words {
namespace {

constexpr std::uint64_t SECOND = 1'000'000; // us

} // namespace

void ScreenSaver::setTime(unsigned seconds, std::uint64_t now)
{
    m_time = seconds * SECOND;
    m_touched = now;
    if (m_time != 0 || !isDark())
        return;
    wake();
    endWaking();
}

void ScreenSaver::touched(bool pressed, bool down, std::uint64_t now)
{
    m_touched = now;
    m_bDown = down;
    if (isDark() && pressed)
        wake();
    if (!down)
        endWaking();
}

void ScreenSaver::setDevices(bool any, bool down, std::uint64_t now)
{
    m_bDevices = any;
    if (m_state != State::LIT)
        m_screen.grab(true); // the new ones too
    touched(!any, down, now);
}

std::optional<std::uint64_t> ScreenSaver::due() const
{
    if (m_state != State::LIT || m_time == 0 || !m_bDevices || m_bDown)
        return std::nullopt;
    return m_touched + m_time;
}

// A program that saw a finger come down must see it lifted. So a screen that is touched stays on,
// and the devices are asked once more when nobody else can hear them.
void ScreenSaver::tick(std::uint64_t now)
{
    const auto time = due();
    if (!time || now < *time)
        return;
    m_touched = now;
    m_screen.grab(true);
    if (!m_screen.isPressed() && m_screen.setDark(true))
        m_state = State::DARK;
    else
        m_screen.grab(false);
}

void ScreenSaver::wake()
{
    m_screen.setDark(false);
    m_state = State::WAKING;
}

void ScreenSaver::endWaking()
{
    if (m_state != State::WAKING)
        return;
    m_screen.grab(false);
    m_state = State::LIT;
}

} // namespace words
