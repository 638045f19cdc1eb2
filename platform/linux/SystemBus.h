// Requests to other services of the system over D-Bus, each bounded in time.
#pragma once

#include "platform/linux/Journal.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sdbus-c++/sdbus-c++.h>
#include <string>

namespace board {

// No D-Bus errors of a service's: these are what SystemBus itself says of a call.
constexpr const char *NO_BUS = "org.freedesktop.DBus.Error.NoServer";
constexpr const char *NO_ANSWER = "org.freedesktop.DBus.Error.Timeout";

struct BusMethod
{
    const char *service;
    const char *path;
    const char *interface;
    const char *name;
};

// One connection for the process, made by the first call on a thread of its own ("bus"), and made
// anew by the next call after it is lost. All functions: any thread but that one.
class SystemBus
{
public:
    using Arguments = std::function<void(sdbus::MethodCall &call)>;

    // What came of a call: a reply, or the name of the D-Bus error, NO_BUS or NO_ANSWER.
    struct Outcome
    {
        std::optional<sdbus::MethodReply> reply;
        std::string error;
        explicit operator bool() const { return reply.has_value(); }
    };

    SystemBus() = default;
    SystemBus(const SystemBus &) = delete;
    SystemBus &operator=(const SystemBus &) = delete;

    // A call that is under way: its maker waits, and the bus's thread ends it. `error` is its
    // name, empty if it has been answered; only the first end counts.
    class Exchange
    {
    public:
        virtual void end(const std::string &error) = 0;

    protected:
        ~Exchange() = default;
    };
    // Sends a call and has its answer end the exchange, late answers too. What is returned, the
    // proxy, lives until the call is given up or over. May throw sdbus::Error.
    using Begin = std::function<std::shared_ptr<void>(sdbus::IConnection &bus,
                                                      const std::shared_ptr<Exchange> &exchange)>;

    // Has `begin` call the method and waits at most `timeout`, connecting included. A service that
    // did not answer in time is asked for its properties, which answers only where its own loop
    // runs; until it has done so, or is gone, the calls to it fail at once. Returns the name of the
    // error as Outcome has it, empty if the call was answered.
    std::string exchange(const BusMethod &method, std::chrono::milliseconds timeout,
                         const Begin &begin);

    // The same for a call without a generated proxy.
    Outcome call(const BusMethod &method, std::chrono::milliseconds timeout,
                 const Arguments &arguments = {});

    // Has `told` called on the bus's thread whenever that service answers again, or has gone, after
    // calls to it have failed at once. For the life of the process, one for a service.
    void whenAnswering(const std::string &service, std::function<void()> told);

    // A property of the type T; nothing if it cannot be read.
    template <typename T>
    std::optional<T> property(const BusMethod &property, std::chrono::milliseconds timeout);

private:
    using Clock = std::chrono::steady_clock;
    using Connection = std::shared_ptr<sdbus::IConnection>;
    class Waiting;
    struct Silent;

    Connection connection(Clock::time_point deadline);
    void run();
    bool isLate();
    bool isSilent(const std::string &service);
    void noteSilence(const Connection &connection, const BusMethod &method);
    void endSilence(Silent &silent, const std::string &service);

    Fault m_fault;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Connection m_connection;
    bool m_hasThread = false;
    bool m_isConnecting = false;
    bool m_isLate = false; // a call has waited in vain for the connection that is being made
    std::map<std::string, std::shared_ptr<Silent>> m_silent;
    // The last one that is over: its question's callback may not have returned yet.
    std::map<std::string, std::shared_ptr<Silent>> m_over;
    std::map<std::string, std::function<void()>> m_answering;
};

// The one of this process, never destroyed.
SystemBus &systemBus();

template <typename T>
std::optional<T> SystemBus::property(const BusMethod &property, std::chrono::milliseconds timeout)
{
    const BusMethod get{property.service, property.path, "org.freedesktop.DBus.Properties", "Get"};
    const Outcome outcome = call(get, timeout, [&](sdbus::MethodCall &message) {
        message << std::string(property.interface) << std::string(property.name);
    });
    if (!outcome)
        return std::nullopt;
    try {
        sdbus::Variant value;
        sdbus::MethodReply reply = *outcome.reply;
        reply >> value;
        return value.get<T>();
    } catch (const sdbus::Error &) {
        return std::nullopt;
    }
}

} // namespace board
