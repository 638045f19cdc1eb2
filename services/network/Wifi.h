// Joining Wi-Fi networks, and what the interface tells of it.
#pragma once

#include "services/network/Device.h"
#include "services/network/Links.h"
#include "services/network/Outcome.h"
#include "services/network/WifiNetworks.h"

#include <functional>
#include <string>

namespace network {

// As the interface has them (netT::WIFI_STATE_T has the same numbers).
enum class WifiState {
    Idle = 0,
    Connecting = 3,
    Disconnected = 4,
    Failed = 5,
    Off = 6,
    Connected = 7,
};

struct WifiStatus
{
    WifiState state = WifiState::Idle;
    WifiLogin login; // joined, being joined, or kept
    int number = -1; // in the list of networks
    int level = 0;
};

// For one device. A join is tried with a profile that vanishes by itself; only what has worked is
// kept, and takes the place of the network before. A join that failed brings that network back.
class Wifi
{
public:
    // `changed` is called when a join has ended, and when something else has changed that only the
    // status tells.
    Wifi(Links &links, const Device &device, std::function<void()> changed);

    const Device &device() const { return m_device; }

    // Failed while it is off. Asks for a scan.
    Outcome networks(std::vector<WifiNetwork> &found);
    // Calls `told` once, soon; the password may have to be asked for.
    void status(const std::function<void(const WifiStatus &)> &told);

    // The network that join() joins. Failed for a name that no network has.
    Outcome setNetwork(const std::string &name, const std::string &password);
    // Done if it has begun.
    Outcome join(int metric);

    // Ends what is under way: the device has been switched, or has gone.
    void forget();
    // To be called when the device's state may have changed.
    void stateChanged();
    // To be called when a network has refused the panel.
    void refused();

private:
    WifiState state() const;
    WifiLogin loginOf(NMConnection *profile) const;
    Object<NMConnection> trialProfile(const WifiLogin &login, int metric) const;
    void tryProfile(NMConnection *profile);
    void onTrying(NMActiveConnection *active);
    void onTrialState();
    void keepTrial();
    void fail(const char *why);
    void bringBack();
    void endFailure();
    void endTrial();
    void rejoinLater();

    Links &m_links;
    const Device &m_device;
    std::function<void()> m_changed;

    WifiLogin m_wanted;
    bool m_joining = false;
    bool m_failed = false;
    Object<NMActiveConnection> m_trial;
    Handlers m_trialHandlers;
    Timer m_deadline; // of a join
    Timer m_failure;  // how long it is told
    Timer m_rejoin;
    std::unique_ptr<Calls> m_joinCalls; // of the join that is under way
    Calls m_calls;
};

} // namespace network
