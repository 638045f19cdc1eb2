// The service on the bus: org.sysset.Network1 at /org/sysset/Network1.
#pragma once

#include "services/network/Addressing.h"
#include "services/network/Cellular.h"
#include "services/network/GLib.h"
#include "services/network/Network.h"
#include "services/network/Pinger.h"

#include <NetworkInterface.h>

namespace network {

class Door
{
public:
    // Shows the object on the bus; throws std::runtime_error if that cannot be.
    Door(GDBusConnection *bus, Network &network, Cellular &cellular, Pinger &pinger);
    ~Door();
    Door(const Door &) = delete;
    Door &operator=(const Door &) = delete;

    void tellDevices(const std::vector<Record> &records);
    void tellModem(const ModemStatus &status);

private:
    class Request;
    template <auto Method>
    struct Served;
    template <auto Method>
    void serve(const char *signal);

    // One for each method of the interface, with its arguments.
    void getDevices(GDBusMethodInvocation *call, gboolean flag);
    void getDevice(GDBusMethodInvocation *call, const char *device, gboolean flag);
    void switchDevice(GDBusMethodInvocation *call, const char *device, gboolean on, gboolean flag);
    void useDhcp(GDBusMethodInvocation *call, const char *device, gboolean flag);
    void keepAddress(GDBusMethodInvocation *call, const char *device, gboolean flag);
    void setAddress(GDBusMethodInvocation *call, const char *device, const char *address,
                    const char *mask, const char *gateway, gboolean flag);
    void setDns(GDBusMethodInvocation *call, const char *device, const char *preferred,
                const char *alternate, gboolean flag);
    void getAccessPoints(GDBusMethodInvocation *call, gboolean flag);
    void getWifi(GDBusMethodInvocation *call, gboolean flag);
    void setNetwork(GDBusMethodInvocation *call, GVariant *name, GVariant *password, gboolean flag);
    void joinNetwork(GDBusMethodInvocation *call);
    void getModem(GDBusMethodInvocation *call, gboolean flag);
    void getApn(GDBusMethodInvocation *call, gboolean flag);
    void setApn(GDBusMethodInvocation *call, GVariant *apn, gboolean flag);
    void getPreferred(GDBusMethodInvocation *call, gboolean flag);
    void setPreferred(GDBusMethodInvocation *call, const char *kind, gboolean flag);
    void ping(GDBusMethodInvocation *call, const char *device, const char *target, gint count,
              guint timeout, gboolean flag);

    Done later(GDBusMethodInvocation *call);

    Network &m_network;
    Addressing m_addressing{m_network};
    Cellular &m_cellular;
    Pinger &m_pinger;
    Object<PanelNetwork1> m_interface;
    std::shared_ptr<int> m_open = std::make_shared<int>(0); // requests that wait for something
};

} // namespace network
