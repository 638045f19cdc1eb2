// The devices that the panel has or had, as NetworkManager and ModemManager come and go.
#pragma once

#include "services/network/Device.h"
#include "services/network/Modems.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace network {

// All in the main loop's thread.
class Devices
{
public:
    struct Listener
    {
        // For a device that is seen for the first time: whether the operator has it switched on.
        std::function<bool(Kind kind, const std::string &name)> isOn;
        std::function<void(Device &device)> attached;
        // What its record tells may have changed, or it has gone.
        std::function<void(Device &device)> changed;
    };

    // Of a kind `ethernet`, or else the one that is there, comes last.
    Devices(Modems &modems, std::string ethernet, Listener listener);

    // From now on, and as often as it has others, the devices are those of this client.
    void watch(NMClient *client);
    // The modem is about to vanish and to come back, or not after all.
    void expectProbe(const Device &modem) { m_probed.insert(&modem); }
    void forgetProbe(const Device &modem) { m_probed.erase(&modem); }

    // By kinds, Ethernet first; of each the one last that a page shows. None is ever removed.
    std::vector<Device *> all() const;
    // The device of that name, null if there never was one.
    Device *find(const std::string &name) const;
    // The last one of a kind, null if there never was one.
    Device *findKind(Kind kind) const;

private:
    void adoptAll();
    void adopt(NMDevice *device);
    void endProbes(const Device &back);
    Device &deviceOf(Kind kind, const std::string &name);
    void release(Device &device);
    bool isAway() const;
    bool isStillThere(const Device &device) const;

    Modems &m_modems;
    std::string m_ethernet;
    Listener m_listener;
    Object<NMClient> m_client;
    std::vector<std::unique_ptr<Device>> m_devices; // by their first sight
    std::set<const Device *> m_probed;              // modems that vanish and come back
    Handlers m_handlers;                            // of the client
    Handlers m_unmanaged; // of devices that NetworkManager does not manage yet
};

} // namespace network
