// Starts the cloud client, and works out whether the cloud is connected.
#pragma once

#include "app/CloudStart.h"
#include "app/LinkMonitor.h"
#include "platform/net.h"

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
        // After every run: the result of loading the cloud configuration, the connection's status
        // (1 connected; -1 with no link online), and the cloud's region as the configuration names
        // it.
        std::function<void(int loadResult, int status, const std::string &region)> checked;
        // The cloud came up or went down.
        std::function<void(bool up)> cloudChanged;
    };

    // Client and links must outlive the monitor. `handler` gets, with `context`, the cloud's
    // messages.
    CloudMonitor(netT::CAsyncClient &client, netT::CAsyncClient::MessageHandler handler,
                 void *context, LinkMonitor &links, Events events);

    // One check over the network service's latest records, the links first. Blocks while the
    // configuration is read and a link is pinged. Reports nothing once the links are stopped.
    void run(const std::vector<netT::stAllNetInfo_tag> &records);

    // Result of the last load of the cloud configuration; -1 until the first.
    int loadResult() const { return m_start.loadResult(); }
    // The cloud's state as last reported.
    bool isCloudUp() const { return m_bCloudUp; }

private:
    const netT::CAsyncClient &m_client;
    CloudStart m_start;
    LinkMonitor &m_links;
    Events m_events;
    std::atomic<bool> m_bCloudUp{false};
};
