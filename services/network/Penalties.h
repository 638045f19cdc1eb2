// The metric of a link that is found to lead somewhere too early. NetworkManager 1.42 adds 20000 to
// a link's metric until its check of connectivity has passed, and takes them away again only from a
// device that is active by then: one whose check has passed while it came up keeps them for ever,
// and traffic takes the wrong link.
#pragma once

#include "services/network/Device.h"

#include <chrono>
#include <functional>
#include <map>
#include <optional>

namespace network {

class Penalties
{
public:
    using Mend = std::function<void(const Device &device)>;

    // `mend` is to have NetworkManager reckon the device's metric anew.
    explicit Penalties(Mend mend) : m_mend(std::move(mend)) {}

    // To be called when a device may have become active. It is looked at some seconds later.
    void changed(const Device &device);

private:
    using Clock = std::chrono::steady_clock;
    struct Watch
    {
        Timer timer;
        std::optional<Clock::time_point> mended; // last
    };

    void look(const Device &device);

    Mend m_mend;
    std::map<const Device *, Watch> m_watches;
};

} // namespace network
