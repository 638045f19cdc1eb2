// Starts the cloud client, once, from the configuration that the project brings.
#pragma once

#include "platform/net.h"

#include <atomic>
#include <string>

// run() belongs to one thread, the rate timer's; loadResult() may be read from any.
class CloudStart
{
public:
    // `handler` gets, with `context`, what arrives on the panel's topics; client and context must
    // outlive the object.
    CloudStart(netT::CAsyncClient &client, netT::CAsyncClient::MessageHandler handler,
               void *context);

    // Loads the configuration and starts the client; a load that fails is tried again at the next
    // call. Does nothing once the client is started, or remote access found switched off.
    void run();

    // Result of the last load; -1 until the first.
    int loadResult() const { return m_nLoadResult; }
    // The cloud's region, as the configuration names it. Thread of run().
    const std::string &region() const { return m_sRegion; }

private:
    netT::CAsyncClient &m_client;
    netT::CAsyncClient::MessageHandler m_handler;
    void *m_pContext;
    std::string m_sRegion;
    std::atomic<int> m_nLoadResult{-1};
    bool m_bSettled = false;
};
