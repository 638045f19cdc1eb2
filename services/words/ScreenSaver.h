// When the screen goes dark, and which touch only wakes it.
#pragma once

#include <cstdint>
#include <optional>

namespace words {

// What the rule acts on.
class Screen
{
public:
    virtual ~Screen() = default;

    // Darkens or lights the screen. False if that cannot be done.
    virtual bool setDark(bool dark) = 0;

    // Keeps what the touch devices say from every other program, or no longer.
    virtual void grab(bool on) = 0;

    // Whether a finger is on the screen, or a button or key down, as the devices say after a grab.
    virtual bool isPressed() = 0;
};

// Times in us, of one clock.
class ScreenSaver
{
public:
    ScreenSaver(Screen &screen, std::uint64_t now) : m_screen(screen), m_touched(now) {}

    // Seconds without a touch after which the screen goes dark; 0 leaves it on. Begins to count.
    void setTime(unsigned seconds, std::uint64_t now);

    // Something came from a touch device: whether something was pressed meanwhile, and whether
    // something is down now.
    void touched(bool pressed, bool down, std::uint64_t now);

    // Devices came or went. Without any the screen is on, since nothing could wake it.
    void setDevices(bool any, bool down, std::uint64_t now);

    // When tick() is to be called next; nothing if the screen is not going to become dark.
    std::optional<std::uint64_t> due() const;
    void tick(std::uint64_t now);

    bool isDark() const { return m_state == State::DARK; }

private:
    enum class State {
        LIT,
        DARK,
        WAKING, // lit by a touch that has not ended
    };

    void wake();
    void endWaking();

    Screen &m_screen;
    State m_state = State::LIT;
    std::uint64_t m_time = 0; // 0 leaves it on
    std::uint64_t m_touched;  // last
    bool m_bDown = false;
    bool m_bDevices = false;
};

} // namespace words
