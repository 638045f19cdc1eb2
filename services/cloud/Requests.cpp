#include "services/cloud/Requests.h"

#include <utility>

namespace cloud {
namespace {

constexpr std::size_t MOST_WAITING = 16;

} // namespace

bool Requests::add(std::string message)
{
    if (m_waiting.size() > MOST_WAITING)
        return false;
    m_waiting.push_back(std::move(message));
    if (m_waiting.size() == 1)
        handFirst();
    return true;
}

bool Requests::answered(std::uint64_t number)
{
    if (m_waiting.empty() || number != m_number)
        return false;
    m_waiting.pop_front();
    if (!m_waiting.empty())
        handFirst();
    return true;
}

void Requests::clear()
{
    m_waiting.clear();
}

void Requests::handFirst()
{
    m_hand(++m_number, m_waiting.front());
}

} // namespace cloud
