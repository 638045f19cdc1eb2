#include "services/network/Door.h"

#include <stdexcept>

namespace network {
namespace {

constexpr const char *PATH = "/org/sysset/Network1";
constexpr const char *FAILED = "org.sysset.Network1.Error.Failed";
constexpr const char *NO_DEVICE = "org.sysset.Network1.Error.NoDevice";

// A panel's program has a handful; who has more floods.
constexpr int MOST_REQUESTS = 64;

constexpr int MOST_ECHOES = 100;
constexpr guint LONGEST_PING_MS = 60000;

void refuse(GDBusMethodInvocation *call, Outcome outcome)
{
    if (outcome == Outcome::NoDevice)
        g_dbus_method_invocation_return_dbus_error(call, NO_DEVICE, "no such device");
    else
        g_dbus_method_invocation_return_dbus_error(call, FAILED, "refused or failed");
}

void answer(GDBusMethodInvocation *call, Outcome outcome, GVariant *result = nullptr)
{
    const Variant held(result == nullptr ? nullptr : g_variant_ref_sink(result));
    if (outcome == Outcome::Done)
        g_dbus_method_invocation_return_value(
            call, result == nullptr ? nullptr : g_variant_new_tuple(&result, 1));
    else
        refuse(call, outcome);
}

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

GVariant *toVariant(const std::vector<WifiNetwork> &networks)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(iiaysi)"));
    int number = 0;
    for (const WifiNetwork &each : networks)
        g_variant_builder_add(&builder, "(ii@aysi)", number++, each.level, bytesOf(each.name),
                              each.security == ENTERPRISE ? "not supported" : "",
                              static_cast<int>(each.security));
    return g_variant_builder_end(&builder);
}

GVariant *toVariant(const WifiStatus &status)
{
    return g_variant_new("(i@ay@ayiii)", static_cast<int>(status.state), bytesOf(status.login.name),
                         bytesOf(status.login.password), static_cast<int>(status.login.security),
                         status.number, status.level);
}

GVariant *toVariant(const PingTimes &times)
{
    return g_variant_new("(iiii)", times.longest, times.shortest, times.average, times.lostPercent);
}

} // namespace

// One that is answered later. It counts as long as it is open.
class Door::Request
{
public:
    // Null, and the call refused, if too many are open.
    static std::shared_ptr<Request> open(Door &door, GDBusMethodInvocation *call)
    {
        if (*door.m_open < MOST_REQUESTS)
            return std::make_shared<Request>(door, call);
        refuse(call, Outcome::Failed);
        return nullptr;
    }

    Request(Door &door, GDBusMethodInvocation *call) : m_open(door.m_open), m_call(call)
    {
        ++*m_open;
    }
    ~Request()
    {
        --*m_open;
        if (m_call != nullptr)
            refuse(m_call, Outcome::Failed);
    }
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    void end(Outcome outcome, GVariant *result = nullptr)
    {
        answer(std::exchange(m_call, nullptr), outcome, result);
    }

private:
    std::shared_ptr<int> m_open; // may outlive the door
    GDBusMethodInvocation *m_call;
};

template <typename... Arguments,
          void (Door::*Method)(GDBusMethodInvocation *call, Arguments... arguments)>
struct Door::Served<Method>
{
    static gboolean handle(PanelNetwork1 *, GDBusMethodInvocation *call, Arguments... arguments,
                           gpointer self)
    {
        (static_cast<Door *>(self)->*Method)(call, arguments...);
        return TRUE;
    }
};

template <auto Method>
void Door::serve(const char *signal)
{
    g_signal_connect(m_interface.get(), signal, G_CALLBACK(&Served<Method>::handle), this);
}

Door::Door(GDBusConnection *bus, Network &network, Cellular &cellular, Pinger &pinger)
    : m_network(network),
      m_cellular(cellular),
      m_pinger(pinger),
      m_interface(panel_network1_skeleton_new())
{
    serve<&Door::getDevices>("handle-get-devices");
    serve<&Door::getDevice>("handle-get-device");
    serve<&Door::switchDevice>("handle-switch-device");
    serve<&Door::useDhcp>("handle-use-dhcp");
    serve<&Door::keepAddress>("handle-keep-address");
    serve<&Door::setAddress>("handle-set-address");
    serve<&Door::setDns>("handle-set-dns");
    serve<&Door::getAccessPoints>("handle-get-access-points");
    serve<&Door::getWifi>("handle-get-wifi");
    serve<&Door::setNetwork>("handle-set-network");
    serve<&Door::joinNetwork>("handle-join-network");
    serve<&Door::getModem>("handle-get-modem");
    serve<&Door::getApn>("handle-get-apn");
    serve<&Door::setApn>("handle-set-apn");
    serve<&Door::getPreferred>("handle-get-preferred");
    serve<&Door::setPreferred>("handle-set-preferred");
    serve<&Door::ping>("handle-ping");
    Error error;
    auto *shown = G_DBUS_INTERFACE_SKELETON(m_interface.get());
    if (g_dbus_interface_skeleton_export(shown, bus, PATH, &error) == FALSE)
        throw std::runtime_error("the bus: " + error.text());
}

Door::~Door()
{
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(m_interface.get()));
}

// Answers with the outcome, at the latest when the last copy is gone.
Done Door::later(GDBusMethodInvocation *call)
{
    const auto request = Request::open(*this, call);
    if (!request)
        return {};
    return [request](Outcome outcome) { request->end(outcome); };
}

void Door::tellDevices(const std::vector<Record> &records)
{
    panel_network1_emit_devices_changed(m_interface.get(), network::toVariant(records));
}

void Door::tellModem(const ModemStatus &status)
{
    panel_network1_emit_modem_changed(m_interface.get(), network::toVariant(status));
}

// --- Devices and addresses ---------------------------------------------------------------------

void Door::getDevices(GDBusMethodInvocation *call, gboolean)
{
    answer(call, Outcome::Done, network::toVariant(m_network.records()));
}

void Door::getDevice(GDBusMethodInvocation *call, const char *device, gboolean)
{
    Record record;
    if (m_network.record(device, record) == Outcome::Done)
        answer(call, Outcome::Done, network::toVariant(record));
    else
        refuse(call, Outcome::NoDevice);
}

void Door::switchDevice(GDBusMethodInvocation *call, const char *device, gboolean on, gboolean)
{
    if (Done done = later(call))
        m_network.switchDevice(device, on != FALSE, done);
}

void Door::useDhcp(GDBusMethodInvocation *call, const char *device, gboolean)
{
    if (Done done = later(call))
        m_addressing.useDhcp(device, std::move(done));
}

void Door::keepAddress(GDBusMethodInvocation *call, const char *device, gboolean)
{
    if (Done done = later(call))
        m_addressing.keepAddress(device, std::move(done));
}

void Door::setAddress(GDBusMethodInvocation *call, const char *device, const char *address,
                      const char *mask, const char *gateway, gboolean)
{
    if (Done done = later(call))
        m_addressing.setAddress(device, address, mask, gateway, std::move(done));
}

void Door::setDns(GDBusMethodInvocation *call, const char *device, const char *preferred,
                  const char *alternate, gboolean)
{
    if (Done done = later(call))
        m_addressing.setDns(device, {preferred, alternate}, std::move(done));
}

// --- Wi-Fi -------------------------------------------------------------------------------------

void Door::getAccessPoints(GDBusMethodInvocation *call, gboolean)
{
    std::vector<WifiNetwork> networks;
    Wifi *wifi = m_network.wifi();
    const Outcome outcome = wifi == nullptr ? Outcome::NoDevice : wifi->networks(networks);
    if (outcome == Outcome::Done)
        answer(call, outcome, toVariant(networks));
    else
        refuse(call, outcome);
}

void Door::getWifi(GDBusMethodInvocation *call, gboolean)
{
    Wifi *wifi = m_network.wifi();
    if (wifi == nullptr || !wifi->device().isKnown())
        return refuse(call, Outcome::NoDevice);
    if (const auto request = Request::open(*this, call))
        wifi->status([request](const WifiStatus &status) {
            request->end(Outcome::Done, toVariant(status));
        });
}

void Door::setNetwork(GDBusMethodInvocation *call, GVariant *name, GVariant *password, gboolean)
{
    Wifi *wifi = m_network.wifi();
    answer(call, wifi == nullptr ? Outcome::NoDevice
                                 : wifi->setNetwork(bytesOf(name), bytesOf(password)));
}

void Door::joinNetwork(GDBusMethodInvocation *call)
{
    answer(call, m_network.joinWifi());
}

// --- 4G ----------------------------------------------------------------------------------------

void Door::getModem(GDBusMethodInvocation *call, gboolean)
{
    ModemStatus status;
    const Outcome outcome = m_cellular.status(status);
    if (outcome == Outcome::Done)
        answer(call, outcome, network::toVariant(status));
    else
        refuse(call, outcome);
}

void Door::getApn(GDBusMethodInvocation *call, gboolean)
{
    if (const auto request = Request::open(*this, call))
        m_cellular.apn([request](Outcome outcome, const Apn &apn) {
            request->end(outcome, outcome == Outcome::Done ? network::toVariant(apn) : nullptr);
        });
}

void Door::setApn(GDBusMethodInvocation *call, GVariant *apn, gboolean)
{
    if (Done done = later(call))
        m_cellular.setApn(toApn(apn), std::move(done));
}

// --- Preferred link, diagnosis -----------------------------------------------------------------

void Door::getPreferred(GDBusMethodInvocation *call, gboolean)
{
    answer(call, Outcome::Done, g_variant_new_string(nameOf(m_network.preferred())));
}

void Door::setPreferred(GDBusMethodInvocation *call, const char *kind, gboolean)
{
    Kind wanted = Kind::Ethernet;
    answer(call, kindOf(kind, wanted) ? m_network.setPreferred(wanted) : Outcome::Failed);
}

void Door::ping(GDBusMethodInvocation *call, const char *name, const char *target, gint count,
                guint timeout, gboolean)
{
    const Device *device = m_network.find(name);
    if (device == nullptr || !device->isPresent())
        return refuse(call, Outcome::NoDevice);
    const std::string from = device->ipInterface();
    const bool isSound = count >= 1 && count <= MOST_ECHOES;
    const auto request = Request::open(*this, call);
    if (!request)
        return;
    if (!isSound || from.empty())
        return request->end(Outcome::Failed);
    m_pinger.ping(from, target, count,
                  std::chrono::milliseconds(std::min(timeout, LONGEST_PING_MS)),
                  [request](const std::optional<PingTimes> &times) {
                      if (times)
                          request->end(Outcome::Done, toVariant(*times));
                      else
                          request->end(Outcome::Failed);
                  });
}

} // namespace network
