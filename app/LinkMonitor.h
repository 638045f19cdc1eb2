// Works out which of the panel's links are online: Ethernet, Wi-Fi and 4G.
#pragma once

#include "platform/net.h"

#include <array>
#include <atomic>
#include <functional>
#include <vector>

// All of it belongs to one thread, the rate timer's, but for stop().
class LinkMonitor
{
public:
    // What the monitor reports, called on the thread of run().
    struct Events
    {
        // Before each record is looked at.
        std::function<void()> beforeRecord;
        // A link, by its device type code 301 to 303, came online or went offline.
        std::function<void(int type, bool online)> changed;
    };

    explicit LinkMonitor(Events events);

    // One check over the network service's latest records. Blocks while a link is pinged. Returns
    // false, with nothing reported, if stop() came meanwhile or before.
    bool run(const std::vector<netT::stAllNetInfo_tag> &records);

    // Whether the last check found a link online.
    bool isAnyOnline() const;

    // Makes a check that is under way end after the ping that it waits for. Any thread.
    void stop() { m_bStopped = true; }

private:
    struct Link
    {
        int type;         // device type code
        const char *kind; // as a record's sNetType names it
        bool pinged;      // whether having an address is not enough
        bool online;
    };

    Events m_events;
    std::array<Link, 3> m_links;
    std::atomic<bool> m_bStopped{false};
};
