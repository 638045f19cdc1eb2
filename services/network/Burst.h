// News that come together are told once.
#pragma once

#include "services/network/GLib.h"

namespace network {

class Burst
{
public:
    // `tell` is called some time after the first call of changed().
    explicit Burst(std::function<void()> tell) : m_tell(std::move(tell)) {}

    void changed()
    {
        if (!m_timer.isRunning())
            m_timer.start(TIME, m_tell);
    }

private:
    static constexpr std::chrono::milliseconds TIME{40};

    std::function<void()> m_tell;
    Timer m_timer;
};

} // namespace network
