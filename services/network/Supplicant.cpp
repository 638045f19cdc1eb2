#include "services/network/Supplicant.h"

#include "services/common/Journal.h"

namespace network {
namespace {

constexpr const char *SERVICE = "fi.w1.wpa_supplicant1";
constexpr const char *PATH = "/fi/w1/wpa_supplicant1";
constexpr const char *INTERFACE = "fi.w1.wpa_supplicant1.Interface";
constexpr const char *PROPERTIES = "org.freedesktop.DBus.Properties";

constexpr const char *VALIDITY_S = "60";

// IEEE 802.11-2020, 9.4.1.9. Other codes are steps on the way: a token to be sent back (76),
// another group to be tried (77), a better method that is taken (126, 127).
constexpr gint32 UNSPECIFIED_FAILURE = 1; // of hostapd, for a confirmation that does not fit
constexpr gint32 CHALLENGE_FAILURE = 15;

} // namespace

Supplicant::Supplicant(GDBusConnection *bus, std::function<void()> refused)
    : m_bus(share(bus)),
      m_refused(std::move(refused)),
      m_subscription(g_dbus_connection_signal_subscribe(
          bus, SERVICE, PROPERTIES, "PropertiesChanged", nullptr, INTERFACE,
          G_DBUS_SIGNAL_FLAGS_NONE, onChanged, this, nullptr))
{
}

Supplicant::~Supplicant()
{
    g_dbus_connection_signal_unsubscribe(m_bus.get(), m_subscription);
}

void Supplicant::onChanged(GDBusConnection *, const char *, const char *, const char *,
                           const char *, GVariant *content, gpointer self)
{
    if (g_variant_is_of_type(content, G_VARIANT_TYPE("(sa{sv}as)")) == FALSE)
        return;
    const Variant properties(g_variant_get_child_value(content, 1));
    if (isRefusal(properties.get()))
        static_cast<Supplicant *>(self)->m_refused();
}

void Supplicant::joinByLastScan(const std::string &device)
{
    g_dbus_connection_call(
        m_bus.get(), SERVICE, PATH, SERVICE, "GetInterface", g_variant_new("(s)", device.c_str()),
        G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_calls.cancellable(),
        Calls::answer, m_calls.expect([this](GObject *source, GAsyncResult *result) {
            Error error;
            const Variant found(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
            const char *interface = nullptr;
            if (!found)
                return;
            g_variant_get(found.get(), "(&o)", &interface);
            setValidity(interface);
        }));
}

void Supplicant::setValidity(const char *interface)
{
    g_dbus_connection_call(
        m_bus.get(), SERVICE, interface, PROPERTIES, "Set",
        g_variant_new("(ssv)", INTERFACE, "ScanResValidForConnect",
                      g_variant_new_string(VALIDITY_S)),
        nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_calls.cancellable(), Calls::answer,
        m_calls.expect([](GObject *source, GAsyncResult *result) {
            Error error;
            const Variant answer(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
            if (!answer)
                service::warn("wpa_supplicant scans before each join: " + error.text());
        }));
}

bool isRefusal(GVariant *properties)
{
    gint32 code = 0;
    return g_variant_lookup(properties, "AuthStatusCode", "i", &code) != FALSE &&
           (code == UNSPECIFIED_FAILURE || code == CHALLENGE_FAILURE);
}

} // namespace network
