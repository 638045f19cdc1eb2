// The simulated panel: one in the process, behind every function of platform/include.
#pragma once

#include "platform/sim/CallLog.h"
#include "platform/sim/KeptSettings.h"
#include "platform/sim/MediaService.h"
#include "platform/sim/NetService.h"
#include "platform/sim/SerialPlc.h"
#include "platform/sim/StateTree.h"
#include "platform/sim/UpdateService.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace sim {

// All functions: any thread. One mutex guards the state tree, the call log and the orders; it is
// never held over a callback of the program, nor while a thread sleeps.
class Panel
{
public:
    Panel();

    // --- for tests and the control socket; requests that make no sense throw BadRequest ---

    Json get(const std::string &path);
    // Changes the state, with what follows from it on a panel: a changed network device brings a
    // record, a pulled cable removes an address by DHCP.
    void set(const std::string &path, const Json &value);
    // Lays a scenario over the state: any part of the tree, "fail" and "delay" beside it.
    void apply(const Json &scenario);
    // As set() and apply(), for the next calls of a platform operation; see Injections.
    void fail(const std::string &op, int code, int count = -1);
    void delay(const std::string &op, int ms);
    void clearFailures();
    void clearDelays();
    // See CallLog.
    Json calls();
    void clearCalls();

    // Back to the built-in defaults: no orders, no calls, no callback registered. Waits for a
    // callback that is running, but at most two seconds: it may be waiting for the caller.
    void reset();
    // Ends the delays of the running calls and of all later ones, for tests that need not wait.
    void hurry();
    // From now on what the panel remembers without power is kept in `file`, up to stop().
    void keepIn(const std::string &file);
    // Ends the services' threads, as reset() waits for them.
    void stop(std::chrono::milliseconds timeout);

    NetService &net() { return m_net; }
    MediaService &media() { return m_media; }
    UpdateService &update() { return m_update; }
    SerialPlc &serialPlc() { return m_serialPlc; }

    // --- for the simulated functions ---

    // Calls `action(state)` with the panel locked.
    template <typename Action>
    auto locked(Action &&action)
    {
        const std::lock_guard lock(m_mutex);
        return action(m_state);
    }

    // Changes a place of the state that the panel remembers without power. In a call's body.
    void keep(Json &place, const Json &value)
    {
        if (place == value)
            return;
        place = value;
        m_kept.changed();
    }

    // One platform call: takes the delay and the answer that are ordered for `op`, else asks
    // `body(state)` for the answer, and logs it. `args` are the in-arguments; null if none.
    template <typename Body>
    auto call(const char *op, Json args, Body &&body)
    {
        std::unique_lock lock(m_mutex);
        const Injections::Order order = m_injections.next(op);
        sleep(lock, order.delayMs);
        return answer(op, std::move(args), order, body);
    }

    // The same for a call that waits at most `timeoutMs` and then answers `timeoutResult`.
    template <typename Body>
    int callWithin(const char *op, Json args, unsigned int timeoutMs, int timeoutResult,
                   Body &&body)
    {
        std::unique_lock lock(m_mutex);
        const Injections::Order order = orderWithin(op, timeoutMs, timeoutResult);
        sleep(lock, order.delayMs);
        return answer(op, std::move(args), order, body);
    }

    // The same for a call that does not use the state, such as one over a socket:
    // `body(timeLeftMs)` runs unlocked, so that the service at the other end can answer.
    template <typename Body>
    int callOutside(const char *op, Json args, unsigned int timeoutMs, int timeoutResult,
                    Body &&body)
    {
        std::unique_lock lock(m_mutex);
        Injections::Order order = orderWithin(op, timeoutMs, timeoutResult);
        sleep(lock, order.delayMs);
        if (!order.result) {
            lock.unlock();
            order.result = body(timeoutMs - static_cast<unsigned int>(order.delayMs));
            lock.lock();
        }
        const auto ordered = [&](Json &) { return *order.result; };
        return answer(op, std::move(args), order, ordered);
    }

private:
    // What is ordered for the call of `op`, which gives up after `timeoutMs`.
    Injections::Order orderWithin(const char *op, unsigned int timeoutMs, int timeoutResult)
    {
        const Injections::Order order = m_injections.next(op);
        if (order.delayMs > 0 && static_cast<unsigned int>(order.delayMs) > timeoutMs)
            return {timeoutResult, static_cast<int>(timeoutMs)};
        return order;
    }

    template <typename Body>
    auto answer(const char *op, Json args, const Injections::Order &order, Body &body)
    {
        using Result = decltype(body(m_state));
        const Result result = order.result ? Result(*order.result) : body(m_state);
        m_log.add(op, std::move(args), static_cast<std::int64_t>(result), callingThread());
        return result;
    }

    void stateChanged(const Json &before);
    void sleep(std::unique_lock<std::mutex> &lock, int ms);

    std::mutex m_mutex;
    std::condition_variable m_hurried; // delayed calls wait on it
    bool m_isHurried = false;
    Json m_state;
    CallLog m_log;
    Injections m_injections;
    NetService m_net;
    MediaService m_media;
    UpdateService m_update;
    SerialPlc m_serialPlc;
    KeptSettings m_kept;
};

// The panel of this process, made at the first call and never destroyed, because platform threads
// may call until the very end.
Panel &panel();

} // namespace sim
