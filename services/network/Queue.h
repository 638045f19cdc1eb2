#pragma once

#include <cstddef>
#include <deque>
#include <functional>

namespace network {

// Work that must not overlap: each piece begins when the one before it has called its `next`.
class Queue
{
public:
    using Next = std::function<void()>;
    using Work = std::function<void(const Next &next)>;

    explicit Queue(std::size_t most) : m_most(most) {}

    // False, and the work is forgotten, if as much as allowed is waiting.
    bool add(Work work);

private:
    void begin();

    std::size_t m_most;
    std::deque<Work> m_waiting; // the first one is under way
};

} // namespace network
