#pragma once

#include "platform/net.h"
#include "platform/sim/Json.h"
#include "platform/sim/ServiceThread.h"

#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace sim {

// The network service in its own time: what follows from a request a moment later, and the
// callbacks. They come from its one thread, "net". Unless said otherwise the functions are called
// with the panel locked.
class NetService
{
public:
    // The first record comes soon after; with `repeat`, one after every change.
    void registerRecords(netT::AllNetInfoCallback callback, void *context, bool repeat);
    void registerAt(netT::AtInfoCallback callback, void *context);
    void forgetRegistrations();

    // A device's switch or link has changed: takes or drops its address.
    void refresh(Json &state, Json &device);
    // Switches a device, a moment later.
    void switchSoon(const std::string &device, bool on);
    // A record to all, a moment later; several changes may come in one.
    void recordsSoon();
    // Begins to join the configured Wi-Fi network with the device.
    void joinWifi(Json &state, Json &device);
    // What follows from a change that came from outside.
    void stateChanged(const Json &before, Json &state);

    // As ServiceThread's. The panel is not locked.
    bool forget(std::chrono::milliseconds patience);
    bool stop(std::chrono::milliseconds patience) { return m_thread.stop(patience); }

private:
    struct RecordListener
    {
        netT::AllNetInfoCallback callback;
        void *context;
        bool repeat;
        bool due;
    };
    struct AtListener
    {
        netT::AtInfoCallback callback;
        void *context;
        bool due;
    };

    void later(std::chrono::milliseconds delay, std::function<void(Json &)> action);
    void leaseSoon(const std::string &device);
    void deviceChanged(const Json &before, Json &state, Json &device);
    void modemChanged(const Json &before, Json &state);
    void wifiChanged(const Json &before, Json &state);
    void driftLater(const Json &state);
    void atSoon();
    void postRecords();
    void deliverRecords();
    std::vector<RecordListener> takeDueListeners();
    void deliverAt();

    ServiceThread m_thread{"net"};
    std::vector<RecordListener> m_recordListeners;
    std::vector<AtListener> m_atListeners;
    bool m_recordsPosted = false;
    int m_joins = 0;
    int m_drifts = 0;
    std::minstd_rand m_air; // the same course every time
};

// A record as get4gAtInfoCallBackup delivers it.
netT::tag_atCollect toAtInfo(const Json &at);

} // namespace sim
