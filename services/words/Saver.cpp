#include "services/words/Saver.h"

#include <utility>

using namespace std::chrono_literals;

namespace words {
namespace {

constexpr auto GATHERING = 200ms;
constexpr auto NEXT_ATTEMPT = 3s;

} // namespace

Saver::Saver(Store store) : m_store(std::move(store)), m_pause(GATHERING)
{
    m_thread = std::thread([this] { run(); });
}

Saver::~Saver()
{
    {
        const std::lock_guard lock(m_mutex);
        m_bStop = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void Saver::keep(const Values &values)
{
    {
        const std::lock_guard lock(m_mutex);
        m_pending = values;
    }
    m_changed.notify_one();
}

void Saver::run()
{
    while (waitForChange())
        save();
}

// Waits for a change and then for those that follow it. False at the end, with nothing left.
bool Saver::waitForChange()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_pending || m_bStop; });
    m_changed.wait_for(lock, m_pause, [this] { return m_bStop; });
    return m_pending.has_value();
}

// What fails stays pending, unless newer values have come; at the end there is no second attempt.
void Saver::save()
{
    std::unique_lock lock(m_mutex);
    auto values = std::exchange(m_pending, std::nullopt);
    lock.unlock();
    const int error = m_store.save(*values);
    m_trouble.set(error);
    lock.lock();
    m_pause = error == 0 ? GATHERING : NEXT_ATTEMPT;
    if (error != 0 && !m_pending && !m_bStop)
        m_pending = std::move(values);
}

} // namespace words
