// Records of the devices and news of the modem, from the network service to the program, on one
// thread, "net".
#pragma once

#include "platform/linux/NetworkClient.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace board {

// It has a connection to the bus of its own: to subscribe blocks for the bus, which would hold up
// the calls on the other one. What it last heard from the service it keeps, and after each change
// hands the newest to every callback; changes that come while a callback is at work are one. After
// the service or the bus was away it subscribes and asks again by itself.
class NetworkNews
{
public:
    NetworkNews() = default;
    NetworkNews(const NetworkNews &) = delete;
    NetworkNews &operator=(const NetworkNews &) = delete;

    // See getAllNetInfoCallBack() and get4gAtInfoCallBackup(). Any thread.
    int addRecords(netT::AllNetInfoCallback callback, void *context, bool flag,
                   unsigned int timeoutMs, bool repeat);
    int addModem(netT::AtInfoCallback callback, void *context);

private:
    template <typename Callback>
    struct Listener
    {
        Callback callback;
        void *context;
        bool repeat;
        bool isDue;
    };
    template <typename Callback>
    using Listeners = std::vector<Listener<Callback>>;

    template <typename Callback>
    int add(Listeners<Callback> &listeners, Listener<Callback> listener, int error);
    bool start();
    bool wake() const;
    void tellAgain();
    void run();
    bool flag();

    // The rest on the thread alone.
    class Watch;
    void forget();
    void take(const NetworkAnswer &news);
    void makeDue(const NetworkAnswer &signal);
    template <typename Callback>
    static void makeDue(Listeners<Callback> &listeners);
    void deliver();
    template <typename Callback, typename News>
    void deliver(Listeners<Callback> &listeners, const std::optional<News> &news);
    template <typename Callback>
    Listeners<Callback> takeDue(Listeners<Callback> &listeners);

    std::mutex m_mutex;
    int m_wake = -1; // an eventfd(2)
    bool m_flag = false;
    Listeners<netT::AllNetInfoCallback> m_recordListeners;
    Listeners<netT::AtInfoCallback> m_modemListeners;

    std::optional<std::vector<netT::stAllNetInfo_tag>> m_records;
    std::optional<netT::tag_atCollect> m_modem;
};

// The one of this process, never destroyed.
NetworkNews &networkNews();

} // namespace board
