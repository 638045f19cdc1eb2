// Starts the cloud client, and works out whether the panel is online on each link and whether the
// cloud is connected.
#pragma once

#include "app/CloudStart.h"
#include "platform/net.h"

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

// run() belongs to one thread, the rate timer's; the results may be read from any.
class CloudMonitor
{
public:
    // What the monitor reports, called on the thread of run().
    struct Events
    {
        // Before each record is looked at.
        std::function<void()> beforeRecord;
        // A link, by its device type code 301 to 303, came online or went offline.
        std::function<void(int type, bool online)> linkChanged;
        // After every run: the result of loading the cloud configuration, the connection's status
        // (1 connected; -1 with no link online), and the cloud's region as the configuration names
        // it.
        std::function<void(int loadResult, int status, const std::string &region)> checked;
        // The cloud came up or went down.
        std::function<void(bool up)> cloudChanged;
    };

    // The client must outlive the monitor. `handler` gets, with `context`, the cloud's messages.
    CloudMonitor(netT::CAsyncClient &client, netT::CAsyncClient::MessageHandler handler,
                 void *context, Events events);

    // One check over the network service's latest records. Blocks while the configuration is read
    // and a link is pinged.
    void run(const std::vector<netT::stAllNetInfo_tag> &records);

    // Makes a run that is under way end after the ping that it waits for, and later ones do
    // nothing. Any thread.
    void stop() { m_bStopped = true; }

    // Result of the last load of the cloud configuration; -1 until the first.
    int loadResult() const { return m_start.loadResult(); }
    // The cloud's state as last reported.
    bool isCloudUp() const { return m_bCloudUp; }

private:
    struct Link
    {
        int type;         // device type code
        const char *kind; // as a record's sNetType names it
        bool pinged;      // whether having an address is not enough
        bool online;
    };

    bool checkLinks(const std::vector<netT::stAllNetInfo_tag> &records);
    void checkCloud(bool anyOnline);

    const netT::CAsyncClient &m_client;
    CloudStart m_start;
    Events m_events;
    static constexpr std::size_t LINK_COUNT = 3;
    std::array<Link, LINK_COUNT> m_links;
    std::atomic<bool> m_bCloudUp{false};
    std::atomic<bool> m_bStopped{false};
};
