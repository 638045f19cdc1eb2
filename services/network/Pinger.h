// Echo requests out of a network device (ICMP, RFC 792) by liboping, each ping in a thread of its
// own. Needs CAP_NET_RAW and nothing else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace network {

// Round trips in whole milliseconds, and the share of the echoes sent that were lost.
struct PingTimes
{
    int longest = 0;
    int shortest = 0;
    int average = 0;
    int lostPercent = 0; // 0 to 99
};

// Main loop's thread (the default GMainContext). Ends at once however many threads are at work:
// they go on alone, hold nothing of this and answer nobody.
class Pinger
{
public:
    // Nothing if no reply came: no route, no such device or host, no right to, all lost.
    using Done = std::function<void(std::optional<PingTimes>)>;

    Pinger();
    ~Pinger();
    Pinger(const Pinger &) = delete;
    Pinger &operator=(const Pinger &) = delete;

    // Sends `count` echoes out of `interface` to `target`, a dotted IPv4 address or a host's name;
    // the next as soon as one is answered or has been waited for a second. `done` is called once,
    // within `timeout`, which counts from here and takes the look-up of the name in; what has been
    // measured by then counts. Refused, and `done` called before this returns: a name or target
    // that cannot be one, a count outside 1 to 100, and all beyond MAX_RUNNING at a time.
    void ping(const std::string &interface, const std::string &target, int count,
              std::chrono::milliseconds timeout, Done done);

    // A thread whose name server does not answer counts for as long as the resolver tries
    // (resolv.conf(5): "timeout", "attempts").
    static constexpr int MAX_RUNNING = 8;

private:
    struct State;
    struct Work;
    std::shared_ptr<State> m_state;
};

} // namespace network
