#include "services/network/Queue.h"

#include <utility>

namespace network {

bool Queue::add(Work work)
{
    if (m_waiting.size() >= m_most)
        return false;
    m_waiting.push_back(std::move(work));
    if (m_waiting.size() == 1)
        begin();
    return true;
}

void Queue::begin()
{
    const Work work = m_waiting.front();
    work([this] {
        m_waiting.pop_front();
        if (!m_waiting.empty())
            begin();
    });
}

} // namespace network
