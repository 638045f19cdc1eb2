// The client of the cloud service over D-Bus: services/cloud/org.sysset.Cloud1.xml.
#pragma once

#include "platform/net.h"

#include <atomic>
#include <Cloud1Proxy.h>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace board {

// It has a connection to the bus of its own, on thread "cloud", and calls the handler on thread
// "request". Whenever the service or the bus comes back it tells the service once more what to
// connect with.
class CloudLink
{
public:
    using Handler = netT::CAsyncClient::MessageHandler;

    CloudLink() = default;
    CloudLink(const CloudLink &) = delete;
    CloudLink &operator=(const CloudLink &) = delete;

    // Begins; a second time it is other values for the same, or another handler. False if the
    // system gives no thread. Any thread.
    bool start(const netT::CloudConfig &config, std::string trust, Handler handler, void *context);
    // The handler is not called any more, once a call that is under way is over, which is waited
    // for for a second. Any thread.
    void detach();
    // As CAsyncClient::getConnectedStatus(); -1 while there is no service. At once. Any thread.
    int status() const { return m_status; }

private:
    class Watch;
    struct Request
    {
        std::uint64_t number;
        std::string topic;
        std::string message;
    };

    void run();
    void handleRequests();
    int call(const Request &request);

    std::atomic<int> m_status{-1};

    std::mutex m_mutex; // what it is told, and what goes from thread to thread
    netT::CloudConfig m_config;
    std::string m_trust;
    std::condition_variable m_arrived;
    std::deque<Request> m_requests;
    std::shared_ptr<Watch> m_watch;
    bool m_bStarted = false;

    std::timed_mutex m_handling; // held while the handler is called
    Handler m_handler = nullptr;
    void *m_pContext = nullptr;
};

// The one of this process, never destroyed.
CloudLink &cloudLink();

} // namespace board
