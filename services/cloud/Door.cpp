#include "services/cloud/Door.h"

#include <stdexcept>

namespace cloud {
namespace {

constexpr const char *PATH = "/org/sysset/Cloud1";
constexpr const char *FAILED = "org.sysset.Cloud1.Error.Failed";

std::string bytesOf(GVariant *array)
{
    gsize size = 0;
    const void *data = g_variant_get_fixed_array(array, &size, 1);
    return data == nullptr ? std::string() : std::string(static_cast<const char *>(data), size);
}

GVariant *bytesOf(const std::string &text)
{
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, text.data(), text.size(), 1);
}

gboolean refuse(GDBusMethodInvocation *call, const char *why)
{
    g_dbus_method_invocation_return_dbus_error(call, FAILED, why);
    return TRUE;
}

} // namespace

Door::Door(GDBusConnection *bus, Host &host)
    : m_host(host), m_interface(panel_cloud1_skeleton_new())
{
    g_signal_connect(m_interface.get(), "handle-start", G_CALLBACK(onStart), this);
    g_signal_connect(m_interface.get(), "handle-get-status", G_CALLBACK(onGetStatus), this);
    g_signal_connect(m_interface.get(), "handle-answer", G_CALLBACK(onAnswer), this);
    service::Error error;
    auto *shown = G_DBUS_INTERFACE_SKELETON(m_interface.get());
    if (g_dbus_interface_skeleton_export(shown, bus, PATH, &error) == FALSE)
        throw std::runtime_error("the bus: " + error.text());
}

Door::~Door()
{
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(m_interface.get()));
}

void Door::tellStatus()
{
    panel_cloud1_emit_status_changed(m_interface.get(), m_host.status(), m_host.reason().c_str());
}

void Door::tellRequest(std::uint64_t number, const std::string &topic, const std::string &message)
{
    panel_cloud1_emit_request(m_interface.get(), number, topic.c_str(), bytesOf(message));
}

gboolean Door::onStart(PanelCloud1 *, GDBusMethodInvocation *call, const char *server, guint16 port,
                       const char *certificateServer, guint16 certificatePort,
                       const char *timeServer, const char *device, const char *salt,
                       const char *requestTopic, const char *responseTopic, GVariant *trust,
                       gpointer self)
{
    const Configuration configuration{
        server, certificateServer, timeServer,    port,          certificatePort, device,
        salt,   requestTopic,      responseTopic, bytesOf(trust)};
    if (!isSound(configuration))
        return refuse(call, "an argument that cannot be");
    Host &host = static_cast<Door *>(self)->m_host;
    host.start(configuration);
    panel_cloud1_complete_start(nullptr, call, host.status());
    return TRUE;
}

gboolean Door::onGetStatus(PanelCloud1 *, GDBusMethodInvocation *call, gpointer self)
{
    const Host &host = static_cast<Door *>(self)->m_host;
    panel_cloud1_complete_get_status(nullptr, call, host.status(), host.reason().c_str());
    return TRUE;
}

gboolean Door::onAnswer(PanelCloud1 *, GDBusMethodInvocation *call, guint64 number,
                        GVariant *message, gpointer self)
{
    if (!static_cast<Door *>(self)->m_host.answer(number, bytesOf(message)))
        return refuse(call, "not the request that waits, or too long");
    panel_cloud1_complete_answer(nullptr, call);
    return TRUE;
}

} // namespace cloud
