#include "services/cloud/Session.h"

#include <algorithm>

namespace cloud {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds LONGEST_STAGE = 8s;
constexpr milliseconds FIRST_PAUSE = 2s;
constexpr milliseconds LONGEST_PAUSE = 18s;
constexpr milliseconds LATER_PAUSE = 60s;
constexpr auto LATER = 15min;
constexpr int LAST_DOUBLING = 4;
constexpr milliseconds STEADY = 30s;
// A network that has just changed is not ready yet; one that changes all the time is no reason to
// knock more often than this.
constexpr milliseconds SETTLED = 1s;
constexpr milliseconds BETWEEN_TRIES = 5s;

} // namespace

int statusOf(Stage stage)
{
    return -2 - static_cast<int>(stage);
}

void Session::start()
{
    m_world.end();
    m_failures = 0;
    set(CONNECTING, "");
    tryAll();
}

void Session::tryAll()
{
    m_phase = Phase::Trying;
    m_begun = m_world.now();
    m_bChanged = false;
    run(Stage::Time);
}

void Session::run(Stage stage)
{
    m_stage = stage;
    m_world.wakeAfter(LONGEST_STAGE);
    m_world.begin(stage);
}

void Session::passed(Stage stage)
{
    if (m_phase != Phase::Trying || stage != m_stage)
        return;
    if (stage == Stage::Subscription) {
        m_phase = Phase::Standing;
        m_world.wakeAfter(STEADY);
        return set(CONNECTED, "");
    }
    if (m_status == statusOf(stage))
        set(CONNECTING, "");
    run(static_cast<Stage>(static_cast<int>(stage) + 1));
}

void Session::failed(Stage stage, const std::string &why)
{
    if (m_phase == Phase::Trying && stage == m_stage)
        fall(stage, why);
}

void Session::lost(const std::string &why)
{
    if (m_phase == Phase::Standing)
        fall(Stage::Server, why);
    else
        failed(m_stage, why);
}

void Session::fall(Stage stage, const std::string &why)
{
    m_world.end();
    if (m_failures++ == 0)
        m_trouble = m_world.now();
    wait();
    set(statusOf(stage), why);
}

void Session::wait()
{
    m_phase = Phase::Waiting;
    const milliseconds time = pause();
    m_due = m_world.now() + time;
    m_world.wakeAfter(time);
    if (m_bChanged)
        hasten();
}

void Session::hasten()
{
    const auto now = m_world.now();
    const auto due = std::max(now + SETTLED, m_begun + BETWEEN_TRIES);
    if (due >= m_due)
        return;
    m_due = due;
    m_world.wakeAfter(std::chrono::duration_cast<milliseconds>(due - now));
}

milliseconds Session::pause()
{
    const bool isLate = m_world.now() - m_trouble >= LATER;
    const int doublings = std::min(m_failures - 1, LAST_DOUBLING);
    const milliseconds longest =
        isLate ? LATER_PAUSE : std::min(FIRST_PAUSE * (1 << doublings), LONGEST_PAUSE);
    const double share = 0.5 + m_world.chance() / 2;
    return milliseconds(static_cast<long>(static_cast<double>(longest.count()) * share));
}

void Session::woken()
{
    switch (m_phase) {
    case Phase::Trying:
        return failed(m_stage, "no answer in time");
    case Phase::Waiting:
        return tryAll();
    case Phase::Standing:
        m_failures = 0;
        return;
    case Phase::Idle:
        return;
    }
}

void Session::networkChanged()
{
    m_bChanged = true;
    if (m_phase == Phase::Waiting)
        hasten();
}

void Session::set(int status, const std::string &reason)
{
    if (status == m_status && reason == m_reason)
        return;
    m_status = status;
    m_reason = reason;
    m_world.tell(status, reason);
}

} // namespace cloud
