// What keeps the Wi-Fi page up to date from the rate timer's thread.
#pragma once

#include "platform/net.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

// Whether `state` is one of a network being joined.
inline bool isJoining(int state)
{
    return state == netT::WIFI_SCANNED || state == netT::WIFI_CONNECTING;
}

// Scans for access points and asks how joining goes, while the page is seen and its device is on.
// Any thread, except where said otherwise.
class WifiRefresh
{
public:
    // Called from run().
    struct Reports
    {
        std::function<void()> scanBegins;
        std::function<void()> scanEnds;
        std::function<void()> listChanged; // also from takeScan()
        std::function<void()> joiningFailed;
    };

    explicit WifiRefresh(Reports reports);

    // One tick. Only the rate timer's thread; a tick with work blocks up to two time-outs of 5 s.
    void run();

    void setVisible(bool visible) { m_bVisible = visible; }
    bool isVisible() const { return m_bVisible; }
    void setEnabled(bool enabled) { m_bEnabled = enabled; }

    // The last state that the page took, of WIFI_STATE_T.
    void setState(int state) { m_nState = state; }
    int state() const { return m_nState; }
    // Makes WIFI_FAILED the last state. Returns whether it was another one: a failure is told once.
    bool takeFailure() { return m_nState.exchange(netT::WIFI_FAILED) != netT::WIFI_FAILED; }

    // While a network is being set up the state asked for would still be the former network's.
    void suspendPoll();
    void resumePoll() { m_bPolls = true; }

    // Whether the last scan failed: what it would have found is not known.
    bool hasScanFailed() const { return m_bScanFailed; }

    // A new list of access points, in any order.
    void takeScan(std::vector<netT::stApInfo_tag> list);

    // Calls `use(list)`, the strongest access point first, with the list held.
    template <typename Use>
    void withList(Use &&use)
    {
        const std::unique_lock<std::mutex> lock(m_mutex);
        use(m_list);
    }

private:
    void refresh();
    void scan();
    void poll();

    const Reports m_reports;
    std::mutex m_mutex;
    std::vector<netT::stApInfo_tag> m_list;
    std::atomic<bool> m_bVisible{false};
    std::atomic<bool> m_bEnabled{false};
    std::atomic<bool> m_bPolls{true};
    std::atomic<bool> m_bScanFailed{false};
    std::atomic<unsigned int> m_nSuspensions{0};
    std::atomic<int> m_nState{netT::WIFI_IDLE};
    std::int64_t m_nLastRefresh; // run() alone
};
