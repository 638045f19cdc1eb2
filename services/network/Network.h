// The panel's network: what an operator may do with its devices, and their records.
#pragma once

#include "services/network/Burst.h"
#include "services/network/Devices.h"
#include "services/network/Links.h"
#include "services/network/Outcome.h"
#include "services/network/Penalties.h"
#include "services/network/Settings.h"
#include "services/network/Wifi.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace network {

// Works from the start; until NetworkManager is there, and while it is away, what needs it fails.
// All in the main loop's thread.
class Network
{
public:
    // `told` is called with the records of all devices when they have changed, at most 300 ms late,
    // or when something has ended that a record is waited for. `folder` is where profiles are kept.
    // The Ethernet device of that name, or else one that is there, comes last of its kind.
    Network(GDBusConnection *bus, Modems &modems, Settings settings, std::string folder,
            std::string ethernet, std::function<void(const std::vector<Record> &)> told);
    ~Network();

    std::vector<Record> records() const;
    // NoDevice also for one that is unplugged.
    Outcome record(const std::string &device, Record &record) const;

    // `done` is called once the choice is kept. It may be one that is away for a moment.
    void switchDevice(const std::string &device, bool on, const Done &done);

    Kind preferred() const { return m_settings.preferred(); }
    Outcome setPreferred(Kind kind);

    // Null where there never was a Wi-Fi device.
    Wifi *wifi() const;
    Outcome joinWifi();

    // The device of that name, or the one that is shown of a kind; null if there never was one.
    const Device *find(const std::string &name) const { return m_devices.find(name); }
    const Device *findKind(Kind kind) const { return m_devices.findKind(kind); }
    // Null while there is none.
    NMRemoteConnection *profileOf(const Device &device) const;
    // Changes the profile of a device, as Links::change() does. Not while a Wi-Fi network is being
    // joined. Nothing is told of a change that is refused: a page has it half typed, and a record
    // would put the former text back.
    void change(const Device &device, Links::Edit edit, Done done);

    // Something that only other answers tell has changed.
    void tellChange();
    // Has ModemManager disable the modems that are off; to be called when it tells something new.
    void disableModems();

private:
    void connect();
    void onConnected(GObject *source, GAsyncResult *result);
    void onRunning();
    void watchProfiles();

    void onAttached(Device &device);
    void onDeviceChanged(Device &device);
    Wifi *wifiOf(const Device &device) const;
    void learn(Device &device);
    void putInOrder(Device &device);
    void bringUp(const Device &device);
    void dialOnce(const Device &device);
    void takeOver(const Device &device);

    void finishSwitch(Device &device, bool on);
    void finishOff(Device &device);
    void wakeModem(const Device &device, std::function<void()> then);
    bool mustDisable(const Device &device) const;
    int metricOf(Kind kind) const;

    Record recordOf(const Device &device) const;
    void tell();

    Object<GDBusConnection> m_bus;
    Modems &m_modems;
    Settings m_settings;
    std::string m_folder;
    std::function<void(const std::vector<Record> &)> m_told;

    Devices m_devices;
    std::unique_ptr<Links> m_links;
    Supplicant m_supplicant;
    std::vector<std::unique_ptr<Wifi>> m_wifis; // one a device
    std::set<const Device *> m_toDial;          // modems that have come back
    std::set<std::string> m_takenOver; // paths of connections that NetworkManager has found
    std::vector<Record> m_lastTold;
    bool m_isForced = false; // the next records are told even if nothing in them has changed
    Handlers m_handlers;     // of the client
    Handlers m_profiles;     // of all profiles
    Burst m_burst;
    Penalties m_penalties;
    Timer m_retry;
    Timer m_modemRetry;
    Calls m_calls;
};

} // namespace network
