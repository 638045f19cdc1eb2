// Joining Wi-Fi networks, and what the interface tells of it.
#pragma once

#include "services/network/Device.h"
#include "services/network/Links.h"
#include "services/network/Outcome.h"
#include "services/network/Supplicant.h"
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
    Wifi(Links &links, Supplicant &supplicant, const Device &device, std::function<void()> changed);

    const Device &device() const { return m_device; }
    bool isJoining() const { return m_joining; }

    // Failed while it is off. Asks for a scan.
    Outcome networks(std::vector<WifiNetwork> &found);
    // Calls `told` once, soon; the password may have to be asked for.
    void status(const std::function<void(const WifiStatus &)> &told);

    // The network that join() joins. Failed for a name that no network has.
    Outcome setNetwork(const std::string &name, const std::string &password);
    // Done if it has begun; its route gets the metric.
    Outcome join(int metric);

    // To be called when the device is there. A join that another netServer has begun goes on.
    void attached();
    // Ends what is under way: the device is switched.
    void forget();
    // To be called when the device has gone: a join has failed, if the device is only held.
    void lost();
    // To be called when the device's state may have changed.
    void stateChanged();
    // To be called when a network has refused the panel.
    void refused();
    // To be called when profiles have changed.
    void profilesChanged() { m_known = {}; }

private:
    void scan();
    WifiState state() const;
    int numberOf(const std::string &name) const;
    WifiLogin loginOf(NMConnection *profile) const;
    void takeSecrets(NMConnection *profile, GVariant *secrets);
    Object<NMConnection> trialProfile(const WifiLogin &login, int metric) const;
    void begin();
    void ask();
    void onAnswer(unsigned join, GObject *source, GAsyncResult *result);
    void onTrying(NMActiveConnection *active);
    void onTrialState();
    void keepTrial();
    void onKept(bool kept);
    void fail(const char *why);
    void bringBack();
    void endFailure();
    Object<NMActiveConnection> endTrial();
    void rejoinLater();

    Links &m_links;
    Supplicant &m_supplicant;
    const Device &m_device;
    std::function<void()> m_changed;

    WifiLogin m_wanted;
    WifiLogin m_known; // the kept network, with its password
    WifiStatus m_told; // last
    bool m_joining = false;
    bool m_failed = false;
    bool m_isScanning = false;   // NetworkManager has been asked to, and has not answered yet
    bool m_isAsking = false;     // NetworkManager has not answered yet what it was asked to try
    unsigned m_join = 0;         // counts the joins, so that a late answer is told from another's
    Object<NMConnection> m_next; // to be tried
    Object<NMActiveConnection> m_trial;
    Handlers m_trialHandlers;
    Timer m_deadline; // of a join
    Timer m_failure;  // how long it is told
    Timer m_rejoin;
    Calls m_calls;
};

} // namespace network
