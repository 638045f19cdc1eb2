// What keeps the Wi-Fi page up to date from the rate timer's thread.
#pragma once

#include <cstdint>
#include <functional>

class WifiConnection;

// Scans for access points and asks how joining goes, every ten seconds while the page is seen and
// its device is usable.
class WifiRefresh
{
public:
    // Called from run().
    struct Reports
    {
        std::function<void()> scanBegins;
        std::function<void()> scanEnds;
        std::function<void()> listChanged;
        std::function<void()> joiningFailed;
    };

    // `connection` must outlive the job.
    WifiRefresh(WifiConnection &connection, Reports reports);

    // One tick. Only the rate timer's thread; a tick with work blocks up to two time-outs of 5 s.
    void run();

private:
    void scan();
    void poll(unsigned ticket);

    WifiConnection &m_connection;
    const Reports m_reports;
    std::int64_t m_nLastMs;
};
