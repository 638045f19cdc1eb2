#include "platform/sim/CallLog.h"

#include "platform/sim/Operations.h"

#include <cstring>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace sim {
namespace {

void checkOperation(const std::string &op)
{
    if (!isOperation(op))
        throw BadRequest("no such operation: " + op);
}

} // namespace

void CallLog::add(const char *op, Json args, std::int64_t result, const char *thread)
{
    if (m_calls == limit)
        dropOldest();
    ++m_calls;
    if (!m_entries.empty()) {
        Entry &last = m_entries.back();
        if (last.op == op && last.result == result && last.thread == thread && last.args == args) {
            ++last.count;
            return;
        }
    }
    m_entries.push_back({op, std::move(args), result, thread, 1});
}

void CallLog::dropOldest()
{
    --m_calls;
    if (--m_entries.front().count == 0)
        m_entries.pop_front();
}

void CallLog::clear()
{
    m_entries.clear();
    m_calls = 0;
}

Json CallLog::toJson() const
{
    Json calls = Json::array();
    for (const Entry &entry : m_entries) {
        const Json call = {{"op", entry.op},
                           {"args", entry.args.is_null() ? Json::array() : entry.args},
                           {"result", entry.result},
                           {"thread", entry.thread}};
        calls.insert(calls.end(), entry.count, call);
    }
    return calls;
}

void Injections::fail(const std::string &op, int code, int count)
{
    checkOperation(op);
    if (count == 0 || count < -1)
        throw BadRequest("fail: COUNT must be 1 or more");
    m_failures[op] = {code, count};
}

void Injections::delay(const std::string &op, int ms)
{
    checkOperation(op);
    if (ms < 0)
        throw BadRequest("delay: MS must be 0 or more");
    m_delays[op] = ms;
}

Injections::Order Injections::next(const char *op)
{
    const auto ordered = m_delays.find(op);
    return {nextResult(op), ordered == m_delays.end() ? 0 : ordered->second};
}

std::optional<int> Injections::nextResult(const char *op)
{
    const auto failure = m_failures.find(op);
    if (failure == m_failures.end())
        return std::nullopt;
    const int code = failure->second.code;
    if (failure->second.left == 1)
        m_failures.erase(failure);
    else if (failure->second.left > 1)
        --failure->second.left;
    return code;
}

const char *callingThread()
{
    if (getpid() == gettid())
        return "gui";
    char name[16] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    for (const char *known : {"timer", "media", "net"})
        if (std::strcmp(name, known) == 0)
            return known;
    return "worker";
}

} // namespace sim
