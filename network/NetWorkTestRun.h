// One run of the network diagnosis: which checks, in which order, and what they ask.
#pragma once

#include "platform/net.h"

#include <array>
#include <functional>
#include <string>

// The checks of one link. Each blocks in the network service's calls.
class NetWorkTestLink
{
public:
    // How a check ends. `value` goes with the states that have one.
    struct Outcome
    {
        int state;
        int value = 0;
        bool passed = false;
    };

    // `connectionStatus` tells how the cloud client stands, as CAsyncClient::getConnectedStatus();
    // `stopped` keeps a check that makes several calls from the next one.
    NetWorkTestLink(std::string device, const std::function<int()> &connectionStatus,
                    const std::function<bool()> &stopped);

    Outcome exists() const;
    Outcome isUp() const;
    Outcome isLinked() const;
    Outcome reachesGateway() const;
    Outcome reachesCloud() const;
    Outcome delay() const;
    Outcome wifiSignal() const;
    Outcome modemSignal() const;
    Outcome hasCard() const;
    Outcome isAttached() const;

private:
    struct Address
    {
        std::string own;
        std::string gateway;
    };
    Address address() const;
    int ping(const std::string &target, const std::string &source, int count,
             netT::stNetCommuPacketInfo_tag &statistics) const;

    std::string m_sDevice;
    const std::function<int()> &m_connectionStatus;
    const std::function<bool()> &m_stopped;
};

// Knows no widget. One thread.
class NetWorkTestRun
{
public:
    struct Input
    {
        std::array<std::string, 3> devices; // of Ethernet, Wi-Fi and 4G; empty if not known
        int loadResult;                     // of the cloud configuration, 0 or more if it is loaded
        std::function<int()> connectionStatus; // asked anew by each link
        std::function<bool()> stopped;         // true ends the run after the call under way
        // Takes each item's NetWorkTestState as it comes, and the value that goes with it.
        std::function<void(int item, int state, int value)> report;
    };

    explicit NetWorkTestRun(Input input);

    // Runs the checks; a stopped run reports no more. Returns a NetWorkTestResult.
    int run() const;

private:
    bool runLink(std::size_t link) const;

    Input m_input;
};
