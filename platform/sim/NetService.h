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

// The network service: what follows from a request after a delay, and the callbacks, which run on
// its one thread, "net". Unless said otherwise the functions are called with the panel locked.
class NetService
{
public:
    // The first record comes shortly after; with `repeat`, one after every change.
    void registerRecords(netT::AllNetInfoCallback callback, void *context, bool repeat);
    void registerAt(netT::AtInfoCallback callback, void *context);
    void forgetRegistrations();

    // A device's switch or link has changed: gives it an address or takes it away.
    void refresh(Json &state, Json &device);
    // Switches a device on or off, shortly after.
    void switchDevice(const std::string &device, bool on);
    // Sends a record to all registrations, shortly after; one record may cover several changes.
    void recordsChanged();
    // Begins to join the configured Wi-Fi network with the device.
    void joinWifi(Json &state, Json &device);
    // Another network is about to be configured.
    void keepWifi(const Json &state);
    // What follows from a change that came from outside.
    void stateChanged(const Json &before, Json &state);

    // As ServiceThread's. The panel is not locked.
    bool forget(std::chrono::milliseconds timeout);
    bool stop(std::chrono::milliseconds timeout) { return m_thread.stop(timeout); }

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

    void schedule(std::chrono::milliseconds delay, std::function<void(Json &)> action);
    void requestLease(const std::string &device);
    void deviceChanged(const Json &before, Json &state, Json &device);
    void modemChanged(const Json &before, Json &state);
    void wifiChanged(const Json &before, Json &state);
    void bringBackWifi(Json &state, Json &device);
    void scheduleDrift(const Json &state);
    void atInfoChanged();
    void postRecords();
    void deliverRecords();
    std::vector<RecordListener> takeDueListeners();
    void deliverAt();

    ServiceThread m_thread{"net"};
    std::vector<RecordListener> m_recordListeners;
    std::vector<AtListener> m_atListeners;
    bool m_recordsPosted = false;
    int m_joins = 0;
    Json m_keptWifi; // the network that was joined last, null if none was
    int m_drifts = 0;
    std::minstd_rand m_random; // the same sequence in every run
};

// A record as get4gAtInfoCallBackup delivers it.
netT::tag_atCollect toAtInfo(const Json &at);

} // namespace sim
