#include "services/cloud/Broker.h"

#include "services/cloud/Tls.h"

#include <glib-unix.h>
#include <mosquitto.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace cloud {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds KEEP_ALIVE = 30s;
constexpr std::chrono::seconds AGAIN = 1s;
constexpr auto LONGEST_SILENCE = 10s; // to a ping
constexpr int AT_LEAST_ONCE = 1;
constexpr int REFUSED = 0x80; // of a SUBACK: MQTT 3.1.1, 3.9.3
constexpr const char *HERE = "online";
constexpr const char *GONE = "offline"; // the will
// What may be read before libmosquitto has made a packet of it: the largest message, its topic, and
// what TLS puts around both.
constexpr std::uint64_t MOST_UNREAD = LARGEST_MESSAGE + 32768;
constexpr const char *TOO_LARGE = "a message above 256 KiB";
constexpr int MOST_THREADS = 4; // that wait for a name server

struct MosquittoDeleter
{
    void operator()(mosquitto *client) const { mosquitto_destroy(client); }
};

std::string textOf(int result)
{
    return result == MOSQ_ERR_ERRNO ? "the connection is broken" : mosquitto_strerror(result);
}

bool addressOf(int fd, bool isPeer, sockaddr_storage &address)
{
    socklen_t size = sizeof address;
    auto *name = reinterpret_cast<sockaddr *>(&address);
    return (isPeer ? ::getpeername(fd, name, &size) : ::getsockname(fd, name, &size)) == 0;
}

bool isSame(const sockaddr_storage &one, const sockaddr_storage &other)
{
    if (one.ss_family != other.ss_family)
        return false;
    if (one.ss_family == AF_INET6)
        return IN6_ARE_ADDR_EQUAL(&reinterpret_cast<const sockaddr_in6 &>(one).sin6_addr,
                                  &reinterpret_cast<const sockaddr_in6 &>(other).sin6_addr);
    return reinterpret_cast<const sockaddr_in &>(one).sin_addr.s_addr ==
           reinterpret_cast<const sockaddr_in &>(other).sin_addr.s_addr;
}

} // namespace

// A client of libmosquitto's, and what its callbacks have noted. It belongs to a thread while that
// looks the name up, to the main loop then; given up, it ends with the thread.
class Broker::Wire
{
public:
    Wire(const Configuration &configuration, const std::string &identity,
         std::shared_ptr<int> threads)
        : m_configuration(configuration),
          m_threads(std::move(threads)),
          m_context(makeContext(configuration.server, configuration.trust, identity, m_fault)),
          m_client(mosquitto_new(configuration.device.c_str(), true, this))
    {
        if (!m_context || !m_client)
            return;
        mosquitto *client = m_client.get();
        mosquitto_void_option(client, MOSQ_OPT_SSL_CTX, m_context.get());
        mosquitto_int_option(client, MOSQ_OPT_SSL_CTX_WITH_DEFAULTS, 0);
        mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
        mosquitto_connect_callback_set(client, onConnected);
        mosquitto_subscribe_callback_set(client, onSubscribed);
        mosquitto_message_callback_set(client, onMessage);
        mosquitto_log_callback_set(client, onLog);
        m_isMade = mosquitto_will_set(client, configuration.responseTopic.c_str(),
                                      static_cast<int>(std::string_view(GONE).size()), GONE,
                                      AT_LEAST_ONCE, false) == MOSQ_ERR_SUCCESS;
    }
    Wire(const Wire &) = delete;
    Wire &operator=(const Wire &) = delete;

    explicit operator bool() const { return m_isMade; }
    mosquitto *client() const { return m_client.get(); }
    const Configuration &configuration() const { return m_configuration; }

    // Blocks while the name is looked up, and not for more.
    void open()
    {
        result =
            mosquitto_connect_async(m_client.get(), m_configuration.server.c_str(),
                                    m_configuration.port, static_cast<int>(KEEP_ALIVE.count()));
    }
    // libmosquitto makes room for whatever size a packet claims, and reads as long as there is
    // something: this ends the connection before more than the largest message is there.
    void guard()
    {
        SSL *ssl = static_cast<SSL *>(mosquitto_ssl_get(m_client.get()));
        BIO *source = ssl == nullptr ? nullptr : SSL_get_rbio(ssl);
        if (source == nullptr)
            return;
        BIO_set_callback_arg(source, reinterpret_cast<char *>(this));
        BIO_set_callback_ex(source, onRead);
    }

    // In the handshake, with which libmosquitto 2.0 goes on in mosquitto_loop_read() alone, also
    // where it has asked to write: the socket was not connected yet when it began.
    bool isShaking() const
    {
        const SSL *ssl = static_cast<SSL *>(mosquitto_ssl_get(m_client.get()));
        return ssl != nullptr && SSL_is_init_finished(ssl) == 0;
    }

    // Bytes that the network has taken.
    std::uint64_t written() const
    {
        const SSL *ssl = static_cast<SSL *>(mosquitto_ssl_get(m_client.get()));
        BIO *sink = ssl == nullptr ? nullptr : SSL_get_wbio(ssl);
        return sink == nullptr ? 0 : BIO_number_written(sink);
    }

    std::string why(const std::string &otherwise) const
    {
        return m_fault.why.empty() ? otherwise : m_fault.why;
    }
    const TlsFault &fault() const { return m_fault; }

    int result = MOSQ_ERR_SUCCESS; // of open()
    bool isWritable = false;       // the socket has been
    bool isTooLarge = false;       // a message
    // What has come and not been told; the results as MQTT has them, -1 for none.
    int accepted = -1;
    int subscribed = -1;
    std::vector<std::string> messages;
    Clock::time_point sent; // something, last

private:
    static Wire &self(void *wire) { return *static_cast<Wire *>(wire); }
    static void onConnected(mosquitto *, void *wire, int result) { self(wire).accepted = result; }
    static void onSubscribed(mosquitto *, void *wire, int, int count, const int *granted)
    {
        self(wire).subscribed = count == 1 ? granted[0] : REFUSED;
    }
    static void onMessage(mosquitto *, void *wire, const mosquitto_message *message)
    {
        const auto size = static_cast<std::size_t>(message->payloadlen);
        if (size > LARGEST_MESSAGE)
            self(wire).refuseSize();
        else
            self(wire).messages.emplace_back(static_cast<const char *>(message->payload), size);
        self(wire).sent = Clock::now(); // the receipt
    }
    // A packet has been understood. No other sign is there for all kinds.
    static void onLog(mosquitto *, void *wire, int, const char *line)
    {
        if (std::string_view(line).find(" received ") != std::string_view::npos)
            self(wire).m_unread = 0;
    }
    void refuseSize()
    {
        isTooLarge = true;
        m_fault = {TOO_LARGE, false, false};
    }

    static long onRead(BIO *source, int what, const char *, std::size_t, int, long, int result,
                       std::size_t *size)
    {
        auto &wire = self(BIO_get_callback_arg(source));
        if (what == BIO_CB_READ && wire.m_unread > MOST_UNREAD) {
            wire.refuseSize();
            BIO_clear_retry_flags(source);
            return 0; // the end of the stream
        }
        if (what == (BIO_CB_READ | BIO_CB_RETURN) && result > 0 && size != nullptr)
            wire.m_unread += *size;
        return result;
    }

    Configuration m_configuration;
    std::shared_ptr<int> m_threads;
    TlsFault m_fault;
    Context m_context;
    std::unique_ptr<mosquitto, MosquittoDeleter> m_client;
    bool m_isMade = false;
    std::uint64_t m_unread = 0;
};

Broker::Broker(Listener &listener) : m_listener(listener)
{
    static const int result = mosquitto_lib_init();
    static_cast<void>(result);
}

Broker::~Broker()
{
    close();
}

void Broker::connect(const Configuration &configuration, const std::string &identity)
{
    close();
    const auto wire = std::make_shared<Wire>(configuration, identity, m_threads);
    m_wire = wire;
    if (!*wire)
        return fail("no connection can be made");
    // The count is held by who still waits.
    if (m_threads.use_count() > MOST_THREADS + 1)
        return fail("no name server answers");
    m_calls = std::make_unique<service::Calls>();
    m_calls->inThread([wire] { wire->open(); }, [this] { opened(); });
}

void Broker::opened()
{
    if (m_wire->result != MOSQ_ERR_SUCCESS)
        return fail(m_wire->result == MOSQ_ERR_EAI ? "the server's name is not known"
                                                   : textOf(m_wire->result));
    m_wire->guard();
    m_wire->sent = Clock::now();
    watch();
}

void Broker::watch()
{
    const int fd = mosquitto_socket(m_wire->client());
    if (fd < 0)
        return fail("the connection is closed");
    const bool wantsWrite =
        m_wire->isShaking() ? !m_wire->isWritable : mosquitto_want_write(m_wire->client());
    const auto wanted = static_cast<GIOCondition>(wantsWrite ? G_IO_IN | G_IO_OUT : G_IO_IN);
    if (m_source != 0 && wanted == m_watched)
        return;
    stopWatching();
    m_watched = wanted;
    m_source = g_unix_fd_add(fd, wanted, onReady, this);
}

void Broker::stopWatching()
{
    if (m_source != 0)
        g_source_remove(std::exchange(m_source, 0));
}

gboolean Broker::onReady(gint, GIOCondition ready, gpointer self)
{
    return static_cast<Broker *>(self)->advance(ready) ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

// False if the source that has called is gone.
bool Broker::advance(GIOCondition ready)
{
    const guint source = m_source;
    mosquitto *client = m_wire->client();
    int result = MOSQ_ERR_SUCCESS;
    m_wire->isWritable = m_wire->isWritable || (ready & G_IO_OUT) != 0;
    if (m_wire->isShaking() || (ready & (G_IO_IN | G_IO_HUP | G_IO_ERR)) != 0) {
        m_pong.stop();
        result = mosquitto_loop_read(client, 1);
    }
    // Before the handshake libmosquitto takes a connection that is refused for one that is slow.
    if (result == MOSQ_ERR_SUCCESS && (ready & (G_IO_HUP | G_IO_ERR)) != 0)
        result = MOSQ_ERR_CONN_REFUSED;
    if (result == MOSQ_ERR_SUCCESS && !m_wire->isShaking() && mosquitto_want_write(client))
        result = mosquitto_loop_write(client, 1);
    settle(result);
    return m_source == source;
}

// Tells what has come of it, and goes on watching.
void Broker::settle(int result)
{
    const WirePointer wire = m_wire;
    tellNews(wire);
    if (m_wire != wire)
        return;
    if (result == MOSQ_ERR_SUCCESS && !wire->isTooLarge)
        watch();
    else
        fail(textOf(result));
}

void Broker::tellNews(const WirePointer &wire)
{
    const int accepted = std::exchange(wire->accepted, -1);
    const int subscribed = std::exchange(wire->subscribed, -1);
    if (accepted > 0)
        return fail(mosquitto_connack_string(accepted));
    if (accepted == 0) {
        keepAlive();
        m_listener.accepted();
    }
    if (m_wire == wire && subscribed >= REFUSED)
        return fail("the server refuses the subscription");
    if (m_wire == wire && subscribed >= 0) {
        publish(HERE);
        if (m_wire == wire)
            m_listener.subscribed();
    }
    for (const std::string &message : std::exchange(wire->messages, {}))
        if (m_wire == wire)
            m_listener.arrived(message);
}

void Broker::fail(const std::string &why)
{
    const WirePointer wire = m_wire;
    close();
    m_listener.lost(wire->why(why), wire->fault().isDistrust, wire->fault().isRefused);
}

// The server wants to hear something every half minute; its answer is what shows that it is there.
void Broker::keepAlive()
{
    const auto left = m_wire->sent + KEEP_ALIVE - Clock::now();
    if (left > 0s)
        return m_quiet.start(std::chrono::ceil<std::chrono::milliseconds>(left),
                             [this] { keepAlive(); });
    // libmosquitto counts from the end of a packet, which may take long: then it sends no ping yet.
    const std::uint64_t written = m_wire->written();
    const int result = mosquitto_loop_misc(m_wire->client());
    const bool isSent = m_wire->written() != written;
    if (isSent)
        m_wire->sent = Clock::now();
    m_quiet.start(isSent ? KEEP_ALIVE : AGAIN, [this] { keepAlive(); });
    if (isSent)
        m_pong.start(LONGEST_SILENCE, [this] { fail("the server is silent"); });
    settle(result);
}

void Broker::subscribe()
{
    const int result = mosquitto_subscribe(
        m_wire->client(), nullptr, m_wire->configuration().requestTopic.c_str(), AT_LEAST_ONCE);
    if (result != MOSQ_ERR_SUCCESS)
        fail(textOf(result));
}

bool Broker::publish(const std::string &message)
{
    if (!m_wire || message.size() > LARGEST_MESSAGE)
        return false;
    m_wire->sent = Clock::now();
    const int result =
        mosquitto_publish(m_wire->client(), nullptr, m_wire->configuration().responseTopic.c_str(),
                          static_cast<int>(message.size()), message.data(), AT_LEAST_ONCE, false);
    if (result == MOSQ_ERR_SUCCESS)
        watch();
    return result == MOSQ_ERR_SUCCESS;
}

void Broker::close()
{
    stopWatching();
    m_quiet.stop();
    m_pong.stop();
    m_calls.reset();
    m_wire.reset();
}

bool Broker::isRouted() const
{
    const int fd = m_wire ? mosquitto_socket(m_wire->client()) : -1;
    sockaddr_storage peer{};
    sockaddr_storage own{};
    sockaddr_storage wouldBe{};
    if (fd < 0 || !addressOf(fd, true, peer) || !addressOf(fd, false, own))
        return false;
    // A datagram socket sends nothing when it is connected: the kernel looks the route up.
    const int probe = ::socket(peer.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool isFound = probe >= 0 &&
                         ::connect(probe, reinterpret_cast<sockaddr *>(&peer), sizeof peer) == 0 &&
                         addressOf(probe, false, wouldBe);
    if (probe >= 0)
        ::close(probe);
    return isFound && isSame(own, wouldBe);
}

} // namespace cloud
