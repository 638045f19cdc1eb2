#include "platform/sim/SerialPlc.h"

#include "platform/sim/Panel.h"
#include "platform/sim/PlcStation.h"
#include "platform/sim/PseudoTerminal.h"
#include "platform/sim/Root.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <map>
#include <optional>
#include <poll.h>
#include <pthread.h>
#include <string>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace sim {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char *NODES[] = {"com1-232", "com1-422", "com2-232", "com2-485"};
constexpr std::int64_t BITS_A_CHARACTER = 10;

// One port: the bytes in transit each way, by the time at which they arrive.
class Line
{
public:
    explicit Line(const std::string &node) : m_terminal(node) {}

    int fd() const { return m_terminal.fd(); }

    void receive()
    {
        char buffer[4096];
        const ssize_t count = read(fd(), buffer, sizeof buffer);
        if (count <= 0)
            return;
        const auto size = static_cast<std::size_t>(count);
        m_inputEnd = std::max(m_inputEnd, Clock::now()) + durationOf(size);
        m_incoming.emplace(m_inputEnd, std::string(buffer, size));
    }

    void work()
    {
        while (const auto bytes = takeDue(m_incoming))
            for (const PlcStation::Answer &answer : m_station.take(*bytes))
                m_outgoing.emplace(Clock::now() + durationOf(answer.text.size()) + answer.delay,
                                   answer.text);
        while (const auto bytes = takeDue(m_outgoing))
            // Bytes that do not fit are lost, as on a wire.
            [[maybe_unused]] const ssize_t count = write(fd(), bytes->data(), bytes->size());
    }

    Clock::time_point nextDue() const
    {
        Clock::time_point next = Clock::time_point::max();
        for (const Queue *queue : {&m_incoming, &m_outgoing})
            if (!queue->empty())
                next = std::min(next, queue->begin()->first);
        return next;
    }

private:
    using Queue = std::multimap<Clock::time_point, std::string>;

    static std::optional<std::string> takeDue(Queue &queue)
    {
        if (queue.empty() || queue.begin()->first > Clock::now())
            return std::nullopt;
        return std::move(queue.extract(queue.begin()).mapped());
    }

    // How long the line takes for `size` bytes.
    std::chrono::nanoseconds durationOf(std::size_t size) const
    {
        const bool isPaced = panel().locked(
            [](const Json &state) { return state["plc"]["line"]["paced"].get<bool>(); });
        const std::int64_t baud = m_terminal.baud();
        if (!isPaced || baud == 0)
            return std::chrono::nanoseconds(0);
        return std::chrono::nanoseconds(static_cast<std::int64_t>(size) * BITS_A_CHARACTER *
                                        std::nano::den / baud);
    }

    PseudoTerminal m_terminal;
    PlcStation m_station;
    Queue m_incoming;
    Queue m_outgoing;
    Clock::time_point m_inputEnd; // when the last of the incoming bytes arrives
};

} // namespace

struct SerialPlc::Lines
{
    Lines() : wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        for (const char *node : NODES)
            plug(panelRoot() + "/dev/THAL/tty/" + node);
    }
    Lines(const Lines &) = delete;
    Lines &operator=(const Lines &) = delete;
    ~Lines() { close(wake); }

    void plug(const std::string &node)
    {
        try {
            ports.push_back(std::make_unique<Line>(node));
        } catch (const std::exception &failure) {
            std::fprintf(stderr, "no PLC at %s: %s\n", node.c_str(), failure.what());
        }
    }

    // Sleeps until something arrives or is due. False if the thread is to end.
    bool wait()
    {
        std::vector<pollfd> polled{{wake, POLLIN, 0}};
        Clock::time_point due = Clock::time_point::max();
        for (const auto &line : ports) {
            polled.push_back({line->fd(), POLLIN, 0});
            due = std::min(due, line->nextDue());
        }
        const auto left = std::max<Clock::duration>(due - Clock::now(), Clock::duration::zero());
        const timespec timeout{left / std::chrono::seconds(1),
                               (left % std::chrono::seconds(1)).count()};
        ppoll(polled.data(), polled.size(), due == Clock::time_point::max() ? nullptr : &timeout,
              nullptr);
        for (std::size_t i = 0; i < ports.size(); ++i)
            if (polled[i + 1].revents != 0)
                ports[i]->receive();
        return polled[0].revents == 0;
    }

    const int wake;
    std::vector<std::unique_ptr<Line>> ports;
};

SerialPlc::SerialPlc() = default;

SerialPlc::~SerialPlc()
{
    stop();
}

void SerialPlc::start()
{
    const std::lock_guard lock(m_mutex);
    if (m_lines || m_isStopped)
        return;
    m_lines = std::make_unique<Lines>();
    m_thread = std::thread([lines = m_lines.get()] { run(*lines); });
}

void SerialPlc::forget()
{
    std::unique_lock lock(m_mutex);
    const std::unique_ptr<Lines> lines = std::move(m_lines);
    std::thread thread = std::move(m_thread);
    // Unlocked: the thread may wait for the panel while start() is called with the panel locked.
    lock.unlock();
    if (!lines)
        return;
    eventfd_write(lines->wake, 1);
    thread.join();
}

void SerialPlc::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
    }
    forget();
}

void SerialPlc::run(Lines &lines)
{
    pthread_setname_np(pthread_self(), "plc");
    while (lines.wait())
        for (const auto &line : lines.ports)
            line->work();
}

} // namespace sim
