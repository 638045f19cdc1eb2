// The platform calls so far, and the failures and delays that are ordered for the next ones.
#pragma once

#include "platform/sim/Json.h"

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace sim {

// The calls so far, oldest first. Equal calls in a row share one entry with a count, because the
// buzzer's task makes twenty a second; beyond `limit` calls the oldest are dropped.
class CallLog
{
public:
    static constexpr std::uint64_t limit = 50000;

    // `op` and `thread` live as long as the program; `args` is null for a call without arguments.
    void add(const char *op, Json args, std::int64_t result, const char *thread);
    void clear();
    // A list of {"op", "args", "result", "thread"}, one element a call.
    Json toJson() const;

private:
    struct Entry
    {
        const char *op;
        Json args;
        std::int64_t result;
        const char *thread;
        std::uint64_t count;
    };

    void dropOldest();

    std::deque<Entry> m_entries;
    std::uint64_t m_calls = 0;
};

// The failures and delays that a test or a person has ordered, by operation.
class Injections
{
public:
    struct Order
    {
        std::optional<int> result;
        int delayMs = 0;
    };

    // The next `count` calls of `op` answer `code`; all of them if `count` is -1.
    // Throws BadRequest for an unknown operation or count.
    void fail(const std::string &op, int code, int count);
    // Every call of `op` takes `ms`. Throws BadRequest for an unknown operation or a negative time.
    void delay(const std::string &op, int ms);
    void clearFailures() { m_failures.clear(); }
    void clearDelays() { m_delays.clear(); }

    // What is ordered for the call of `op` that is about to be made; counts it.
    Order next(const char *op);

private:
    struct Failure
    {
        int code;
        int left; // -1: for ever
    };

    std::optional<int> nextResult(const char *op);

    std::map<std::string, Failure, std::less<>> m_failures;
    std::map<std::string, int, std::less<>> m_delays;
};

// The calling thread's name in the log: "gui" for the process's first thread, "timer", "media" or
// "net" for the threads of that name, else "worker".
const char *callingThread();

} // namespace sim
