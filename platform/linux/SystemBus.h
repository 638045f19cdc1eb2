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

    // What came of a call: a reply, or the name of the D-Bus error, "" if nothing answered in time.
    struct Outcome
    {
        std::optional<sdbus::MethodReply> reply;
        std::string error;
        explicit operator bool() const { return reply.has_value(); }
    };

    SystemBus() = default;
    SystemBus(const SystemBus &) = delete;
    SystemBus &operator=(const SystemBus &) = delete;

    // Calls the method and waits at most `timeout`, connecting included. A service that did not
    // answer in time is pinged; until it has answered that, or is gone, the calls to it fail at
    // once.
    Outcome call(const BusMethod &method, std::chrono::milliseconds timeout,
                 const Arguments &arguments = {});

    // A property of the type T; nothing if it cannot be read.
    template <typename T>
    std::optional<T> property(const BusMethod &property, std::chrono::milliseconds timeout);

private:
    using Clock = std::chrono::steady_clock;
    using Connection = std::shared_ptr<sdbus::IConnection>;
    struct Exchange;
    struct Silent;

    Connection connection(Clock::time_point deadline);
    void run();
    bool isSilent(const std::string &service);
    void noteSilence(const Connection &connection, const std::string &service);

    Fault m_fault;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Connection m_connection;
    bool m_hasThread = false;
    bool m_isConnecting = false;
    bool m_isLate = false; // a call has waited in vain for the connection that is being made
    std::map<std::string, std::shared_ptr<Silent>> m_silent;
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
