#include "services/network/Pinger.h"

#include "services/network/GLib.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cmath>
#include <map>
#include <mutex>
#include <net/if.h>
#include <oping.h>

using namespace std::chrono_literals;

namespace network {

struct Pinger::State
{
    struct Waiting
    {
        Timer timer;
        Done done;
    };

    // Answers who waits under that number, if he still does.
    void answer(unsigned number, std::optional<PingTimes> times);

    std::map<unsigned, Waiting> waiting;
    unsigned last = 0;
    int running = 0; // threads, those that nobody waits for any more among them
};

void Pinger::State::answer(unsigned number, std::optional<PingTimes> times)
{
    const auto found = waiting.find(number);
    if (found == waiting.end())
        return;
    const Done done = std::move(found->second.done);
    waiting.erase(found);
    done(times);
}

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto ECHO_TIME = 1s;
constexpr auto ANSWER_TIME = 20ms; // from a thread's end to the main loop's answer
constexpr int MAX_COUNT = 100;
constexpr std::size_t MAX_NAME = 253; // RFC 1035, 2.3.4, without the dots at both ends

bool isNameCharacter(char c)
{
    return g_ascii_isalnum(c) || c == '-' || c == '.' || c == '_';
}

// A text of digits and dots is an address or nothing: the resolver would take "1.2" for 1.0.0.2.
bool isTarget(const std::string &text)
{
    if (text.empty() || text.size() > MAX_NAME || text.front() == '-')
        return false;
    in_addr address{};
    if (text.find_first_not_of("0123456789.") == std::string::npos)
        return inet_pton(AF_INET, text.c_str(), &address) == 1;
    return std::all_of(text.begin(), text.end(), isNameCharacter);
}

bool isInterface(const std::string &text)
{
    return !text.empty() && text.size() < IFNAMSIZ && text.find('\0') == std::string::npos;
}

class Statistics
{
public:
    void add(std::optional<double> milliseconds)
    {
        ++m_sent;
        if (!milliseconds)
            return;
        m_shortest = m_answered == 0 ? *milliseconds : std::min(m_shortest, *milliseconds);
        m_longest = std::max(m_longest, *milliseconds);
        m_sum += *milliseconds;
        ++m_answered;
    }
    std::optional<PingTimes> times() const
    {
        if (m_answered == 0)
            return std::nullopt;
        const auto whole = [](double time) { return static_cast<int>(std::lround(time)); };
        return PingTimes{whole(m_longest), whole(m_shortest), whole(m_sum / m_answered),
                         (m_sent - m_answered) * 100 / m_sent};
    }

private:
    int m_sent = 0;
    int m_answered = 0;
    double m_longest = 0;
    double m_shortest = 0;
    double m_sum = 0;
};

// One target of liboping's.
class Echoes
{
public:
    // Looks the name up, which may take any time.
    Echoes(const std::string &interface, const std::string &target) : m_ping(ping_construct())
    {
        if (m_ping == nullptr)
            return;
        int family = AF_INET;
        auto *device = const_cast<char *>(interface.c_str());
        m_isReady = ping_setopt(m_ping, PING_OPT_AF, &family) == 0 &&
                    ping_setopt(m_ping, PING_OPT_DEVICE, device) == 0 &&
                    ping_host_add(m_ping, target.c_str()) == 0;
    }
    ~Echoes() { ping_destroy(m_ping); }
    Echoes(const Echoes &) = delete;
    Echoes &operator=(const Echoes &) = delete;

    bool isReady() const { return m_isReady; }
    // The time in milliseconds until the reply; nothing after `wait`, or if it cannot be sent.
    std::optional<double> send(std::chrono::duration<double> wait) const
    {
        double seconds = wait.count();
        double latency = -1;
        std::size_t size = sizeof latency;
        if (ping_setopt(m_ping, PING_OPT_TIMEOUT, &seconds) != 0 || ping_send(m_ping) < 1 ||
            ping_iterator_get_info(ping_iterator_get(m_ping), PING_INFO_LATENCY, &latency, &size) !=
                0 ||
            latency < 0)
            return std::nullopt;
        return latency;
    }

private:
    pingobj_t *m_ping;
    bool m_isReady = false;
};

} // namespace

// What a thread does. It belongs to the thread, and from its end to the main loop; both are GLib's
// and order what is done here, the lock says so to those who do not see into GLib.
struct Pinger::Work
{
    std::weak_ptr<State> state; // for the main loop
    unsigned number = 0;
    std::string interface;
    std::string target;
    int count = 0;
    Clock::time_point end;

    std::mutex lock;
    std::optional<PingTimes> times;

    void run()
    {
        const std::lock_guard<std::mutex> locked(lock);
        const Echoes echoes(interface, target);
        Statistics statistics;
        for (int sent = 0; echoes.isReady() && sent < count && Clock::now() < end; ++sent)
            statistics.add(echoes.send(std::min<Clock::duration>(ECHO_TIME, end - Clock::now())));
        times = statistics.times();
    }
    void answer()
    {
        const std::lock_guard<std::mutex> locked(lock);
        const auto kept = state.lock();
        if (kept == nullptr)
            return;
        --kept->running;
        kept->answer(number, times);
    }

    static gpointer inThread(gpointer data)
    {
        static_cast<Work *>(data)->run();
        // Not g_main_context_invoke(), which may run it in this thread.
        GSource *source = g_idle_source_new();
        g_source_set_priority(source, G_PRIORITY_DEFAULT);
        g_source_set_callback(source, inMainLoop, data, destroy);
        g_source_attach(source, nullptr);
        g_source_unref(source);
        return nullptr;
    }
    static gboolean inMainLoop(gpointer data)
    {
        static_cast<Work *>(data)->answer();
        return G_SOURCE_REMOVE;
    }
    static void destroy(gpointer data) { delete static_cast<Work *>(data); }
};

Pinger::Pinger() : m_state(std::make_shared<State>()) {}

Pinger::~Pinger() = default;

void Pinger::ping(const std::string &interface, const std::string &target, int count,
                  std::chrono::milliseconds timeout, Done done)
{
    if (!isInterface(interface) || !isTarget(target) || count < 1 || count > MAX_COUNT ||
        m_state->running >= MAX_RUNNING)
        return done(std::nullopt);
    auto work = std::make_unique<Work>();
    work->state = m_state;
    work->number = ++m_state->last;
    work->interface = interface;
    work->target = target;
    work->count = count;
    work->end = Clock::now() + timeout - std::min(timeout / 2, ANSWER_TIME);
    const unsigned number = work->number;
    GThread *thread = g_thread_try_new("ping", Work::inThread, work.get(), nullptr);
    if (thread == nullptr)
        return done(std::nullopt);
    g_thread_unref(thread);
    [[maybe_unused]] const Work *theirs = work.release(); // the thread's
    ++m_state->running;
    State::Waiting &waiting = m_state->waiting[number];
    waiting.done = std::move(done);
    waiting.timer.start(timeout,
                        [state = m_state.get(), number] { state->answer(number, std::nullopt); });
}

} // namespace network
