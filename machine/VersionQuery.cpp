#include "machine/VersionQuery.h"

#include "platform/cos_thread.h"

#include <utility>

namespace {

constexpr unsigned int LIST_TIMEOUT_MS = 3000;

} // namespace

bool VersionQuery::ask()
{
    return COS::CCosThreadPool::submit([self = shared_from_this()] { self->run(); }) == 0;
}

VersionQuery::Answer VersionQuery::answer() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_answer;
}

void VersionQuery::run()
{
    std::vector<dsl::VersionEntry_T> entries;
    const bool listed = dsl::getVersionList(entries, LIST_TIMEOUT_MS) >= 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_answer = listed ? Answer(std::move(entries)) : std::nullopt;
    }
    emit answered();
}
