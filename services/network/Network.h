// The panel's network: devices, their records, and what an operator may do with them.
#pragma once

#include "platform/posix/Ipv4.h"
#include "services/network/Device.h"
#include "services/network/Links.h"
#include "services/network/Modems.h"
#include "services/network/Outcome.h"
#include "services/network/Profile.h"
#include "services/network/Settings.h"
#include "services/network/Supplicant.h"
#include "services/network/Wifi.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace network {

// Works from the start; until NetworkManager is there, and while it is away, requests fail. All in
// the main loop's thread.
class Network
{
public:
    // `told` is called with the records of all devices when they have changed, at most 300 ms late,
    // or when something has ended that a record is waited for. `folder` is where profiles are kept.
    // The Ethernet device of that name, or the first one, comes last of its kind.
    Network(GDBusConnection *bus, Modems &modems, Settings settings, std::string folder,
            std::string ethernet, std::function<void(const std::vector<Record> &)> told);
    ~Network();

    std::vector<Record> records() const;
    // NoDevice also for one that is unplugged.
    Outcome record(const std::string &device, Record &record) const;

    // `done` is called once the choice is kept.
    void switchDevice(const std::string &device, bool on, const Done &done);

    Kind preferred() const { return m_settings.preferred(); }
    Outcome setPreferred(Kind kind);

    // Null where there never was a Wi-Fi device.
    Wifi *wifi() { return m_wifi; }
    Outcome joinWifi();

    // The device of that name, null if there is none.
    const Device *find(const std::string &name) const;
    // The one of a kind that is plugged in, or else was; null if there never was one.
    Device *findKind(Kind kind) const;
    // Null while there is none.
    NMRemoteConnection *profileOf(const Device &device) const;
    // Changes the profile of a device that is there, as Links::change() does. Nothing is told of a
    // change that is refused: a page has it half typed, and a record would put the former text
    // back.
    void change(const Device &device, Links::Edit edit, Done done);

    // Something that only other answers tell has changed.
    void tellChange();

private:
    void connect();
    void onConnected(GObject *source, GAsyncResult *result);
    void watchProfiles();
    void adoptAll();
    void adopt(NMDevice *device);
    Device &deviceOf(Kind kind, const std::string &name);
    Wifi &wifiOf(const Device &device);
    void dialProbed(const Device &device);
    void release(Device &device);
    bool isAway() const;
    bool isStillThere(const Device &device) const;
    std::optional<Record> lastTold(const Device &device) const;
    Device *findPresent(const std::string &name) const;
    void onDeviceChanged(const Device &device);
    void takeOver(const Device &device);
    void onRunning();
    void dropAbsent();
    void putInOrder(Device &device);
    void finishSwitch(Device &device, bool on);
    int metricOf(Kind kind) const;
    Record recordOf(const Device &device) const;
    void powerModem(const Device &device, bool on, std::function<void()> then);
    void changed();
    void tell();

    Object<GDBusConnection> m_bus;
    Modems &m_modems;
    Settings m_settings;
    std::string m_folder;
    std::string m_ethernet;
    std::function<void(const std::vector<Record> &)> m_told;

    std::vector<std::unique_ptr<Device>> m_devices; // none is ever removed
    std::unique_ptr<Links> m_links;
    std::vector<std::unique_ptr<Wifi>> m_wifis; // as the devices
    Wifi *m_wifi = nullptr;                     // of the device that is plugged in, or was last
    Supplicant m_supplicant;
    std::vector<Record> m_lastTold;
    bool m_isProbed = false; // the modem vanishes and comes back
    bool m_isToDial = false; // the modem, once it is back
    bool m_isForced = false; // the next records are told even if nothing in them has changed
    std::set<std::string> m_takenOver; // paths of connections that NetworkManager has found
    Handlers m_handlers;               // of the client
    Handlers m_profiles;               // of all profiles
    Handlers m_unmanaged;              // of devices that NetworkManager does not manage yet
    Timer m_burst;
    Timer m_retry;
    Timer m_absence; // of NetworkManager
    Calls m_calls;
};

} // namespace network
