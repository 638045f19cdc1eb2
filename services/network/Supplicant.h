// What wpa_supplicant itself says of a network that refuses the panel.
#pragma once

#include "services/network/GLib.h"

namespace network {

// NetworkManager 1.42 learns of a wrong password from WPA2's handshake alone; of WPA3's it sees
// only that the network is not joined yet, and tries on. wpa_supplicant has the access point's
// answer (fi.w1.wpa_supplicant1.Interface, AuthStatusCode).
class Supplicant
{
public:
    // `refused` is called for each refusal, whichever network it is of.
    Supplicant(GDBusConnection *bus, std::function<void()> refused);
    ~Supplicant();
    Supplicant(const Supplicant &) = delete;
    Supplicant &operator=(const Supplicant &) = delete;

private:
    static void onChanged(GDBusConnection *bus, const char *sender, const char *path,
                          const char *interface, const char *signal, GVariant *content,
                          gpointer self);

    Object<GDBusConnection> m_bus;
    std::function<void()> m_refused;
    guint m_subscription;
};

// Whether the properties, a{sv}, that have changed tell of a refusal.
bool isRefusal(GVariant *properties);

} // namespace network
