// PLATFORM::CPlatBuzzer and Beep(): what sounds when, on the beeper.
#include "platform/board.h"
#include "platform/linux/Beeper.h"
#include "platform/linux/PanelConf.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mutex>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int FAILED = -1;
constexpr int LONGEST_CLICK = 1000; // milliseconds
constexpr int USUAL_TONE = 3;
constexpr milliseconds HALF_STEP(25); // of runBeep()'s 50 ms: a click ends at the nearest step

bool isTone(int tone)
{
    return tone >= 1 && tone <= static_cast<int>(board::TONES);
}

// Guarded by its own mutex; every function may be called on any thread.
class Buzzer
{
public:
    int askClick()
    {
        const std::lock_guard lock(m_mutex);
        m_clickAsked = m_enabled;
        return 0;
    }

    int setUp(int enabled, int tone, int clickMs)
    {
        const std::lock_guard lock(m_mutex);
        if (!isTone(tone) || clickMs > LONGEST_CLICK)
            return FAILED;
        m_enabled = enabled != 0;
        m_tone = tone;
        m_click = milliseconds(clickMs);
        return 0;
    }

    int setEnabled(bool enabled)
    {
        const std::lock_guard lock(m_mutex);
        m_enabled = enabled;
        return 0;
    }

    int isEnabled()
    {
        const std::lock_guard lock(m_mutex);
        return m_enabled ? 1 : 0;
    }

    int setClick(int clickMs)
    {
        const std::lock_guard lock(m_mutex);
        if (clickMs > LONGEST_CLICK)
            return FAILED;
        m_click = milliseconds(clickMs);
        return 0;
    }

    int setTone(int tone)
    {
        const std::lock_guard lock(m_mutex);
        if (!isTone(tone))
            return FAILED;
        m_tone = tone;
        return 0;
    }

    // A click that is asked for while a tone sounds takes its place.
    int step()
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_clickAsked, false))
            return m_click.count() > 0 ? sound(m_click) : 0;
        if (m_sounds && Clock::now() + HALF_STEP >= m_end)
            return silence();
        return 0;
    }

    int beep(milliseconds length)
    {
        const std::lock_guard lock(m_mutex);
        return sound(length);
    }

    int silence()
    {
        m_sounds = false;
        return m_beeper.play(0) ? 0 : FAILED;
    }

    // At the end of the process, which may come while another thread is in here for good.
    void stop()
    {
        const std::unique_lock lock(m_mutex, std::try_to_lock);
        if (lock.owns_lock() && m_sounds)
            silence();
    }

private:
    int sound(milliseconds length)
    {
        const int hertz = board::panelConf().tones[static_cast<std::size_t>(m_tone - 1)];
        m_sounds = m_beeper.play(hertz);
        m_end = Clock::now() + length;
        return m_sounds ? 0 : FAILED;
    }

    std::mutex m_mutex;
    board::Beeper m_beeper;
    bool m_enabled = true;
    bool m_clickAsked = false;
    bool m_sounds = false;
    int m_tone = USUAL_TONE;
    milliseconds m_click{50};
    Clock::time_point m_end;
};

// Never destroyed: threads may click to the very end. The kernel plays a tone on when the process
// is gone.
Buzzer &buzzer()
{
    static Buzzer &theBuzzer = *[] {
        std::atexit([] { buzzer().stop(); });
        std::at_quick_exit([] { buzzer().stop(); });
        return new Buzzer;
    }();
    return theBuzzer;
}

} // namespace

namespace PLATFORM {

int CPlatBuzzer::open()
{
    return buzzer().askClick();
}

int CPlatBuzzer::init(int enabled, unsigned short pwmType, unsigned short beepTime)
{
    return buzzer().setUp(enabled, pwmType, beepTime);
}

int CPlatBuzzer::setEnable(int enabled)
{
    return buzzer().setEnabled(enabled != 0);
}

int CPlatBuzzer::getEnable()
{
    return buzzer().isEnabled();
}

int CPlatBuzzer::setBeepTime(unsigned short milliseconds)
{
    return buzzer().setClick(milliseconds);
}

int CPlatBuzzer::setPwmType(unsigned short tone)
{
    return buzzer().setTone(tone);
}

int CPlatBuzzer::runBeep()
{
    return buzzer().step();
}

} // namespace PLATFORM

// The program's buzzer task, which runs as long as the program does, ends the tone.
int Beep(int milliseconds)
{
    return milliseconds < 0 ? FAILED : buzzer().beep(std::chrono::milliseconds(milliseconds));
}
