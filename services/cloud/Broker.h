// The MQTT server: one connection, by libmosquitto on the main loop.
#pragma once

#include "services/cloud/Configuration.h"
#include "services/common/GLib.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace cloud {

// The largest message that is taken or sent.
constexpr std::size_t LARGEST_MESSAGE = 262144;

class Broker
{
public:
    // What a connection comes to. Called from the main loop, or from within connect() and
    // subscribe(); each may close() or connect() anew.
    class Listener
    {
    public:
        virtual ~Listener() = default;
        virtual void accepted() = 0;   // connect() has worked
        virtual void subscribed() = 0; // subscribe() has
        virtual void arrived(const std::string &message) = 0;
        // The connection is closed. `isDistrust`: the server's certificate is not accepted, and the
        // clock may be to blame; `isRefused`: the server does not accept the panel's.
        virtual void lost(const std::string &why, bool isDistrust, bool isRefused) = 0;
    };

    explicit Broker(Listener &listener);
    ~Broker();
    Broker(const Broker &) = delete;
    Broker &operator=(const Broker &) = delete;

    // `identity` as Identity has it.
    void connect(const Configuration &configuration, const std::string &identity);
    void subscribe();
    // On the response topic, QoS 1. False if there is no connection or no room.
    bool publish(const std::string &message);
    // The server sends the will then, as no word of farewell is said.
    void close();
    // Whether packets to the server would now leave with the address that the connection has. False
    // without a connection.
    bool isRouted() const;

private:
    class Wire;
    using WirePointer = std::shared_ptr<Wire>;

    void opened();
    void watch();
    bool advance(GIOCondition ready);
    void settle(int result);
    void tellNews(const WirePointer &wire);
    void fail(const std::string &why);
    void keepAlive();
    void stopWatching();
    static gboolean onReady(gint fd, GIOCondition ready, gpointer self);

    Listener &m_listener;
    WirePointer m_wire;
    std::unique_ptr<service::Calls> m_calls;
    std::shared_ptr<int> m_threads = std::make_shared<int>(0);
    guint m_source = 0;
    GIOCondition m_watched = G_IO_IN;
    service::Timer m_quiet; // nothing has been sent
    service::Timer m_pong;  // nothing has been answered
};

} // namespace cloud
