// What only wpa_supplicant itself can say and do, beside NetworkManager (D-Bus API of
// wpa_supplicant 2.10, fi.w1.wpa_supplicant1).
#pragma once

#include "services/network/GLib.h"

namespace network {

// NetworkManager 1.42 learns of a wrong password from WPA2's handshake alone; of WPA3's it sees
// only that the network is not joined yet, and tries on. wpa_supplicant has the access point's
// answer (fi.w1.wpa_supplicant1.Interface, AuthStatusCode). And NetworkManager has it scan before
// each join.
class Supplicant
{
public:
    // `refused` is called for each refusal, whichever network it is of.
    Supplicant(GDBusConnection *bus, std::function<void()> refused);
    ~Supplicant();
    Supplicant(const Supplicant &) = delete;
    Supplicant &operator=(const Supplicant &) = delete;

    // Has the device join by what was seen in the last minute, not only in the last 5 s
    // (ScanResValidForConnect): who touches a network has it in his list. Nothing comes of it where
    // wpa_supplicant does not know the device; a network that is no longer there is scanned for.
    void joinByLastScan(const std::string &device);

private:
    void setValidity(const char *interface);
    static void onChanged(GDBusConnection *bus, const char *sender, const char *path,
                          const char *interface, const char *signal, GVariant *content,
                          gpointer self);

    Object<GDBusConnection> m_bus;
    std::function<void()> m_refused;
    guint m_subscription;
    Calls m_calls;
};

// Whether the properties, a{sv}, that have changed tell of a refusal.
bool isRefusal(GVariant *properties);

} // namespace network
