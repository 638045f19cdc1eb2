#include "services/network/Modems.h"

#include "services/common/Journal.h"

#include <algorithm>
#include <tuple>

namespace network {
namespace {

using namespace std::chrono_literals;

constexpr auto RETRY_TIME = 5s;
constexpr int TIMEOUT = int(std::chrono::milliseconds(Modems::ENABLE_TIME).count());
constexpr int UNKNOWN_CSQ = 99;
constexpr int MAX_CSQ = 31;
constexpr const char *NO_SIM = "/";

// Not mm_object_peek_modem() and its like, which warn where there is no such interface.
MMModem *modemOf(GDBusObject *object)
{
    MmGdbusModem *modem = mm_gdbus_object_peek_modem(MM_GDBUS_OBJECT(object));
    return modem == nullptr ? nullptr : MM_MODEM(modem);
}

bool isRegistered(GDBusObject *object)
{
    MmGdbusModem3gpp *network = mm_gdbus_object_peek_modem3gpp(MM_GDBUS_OBJECT(object));
    if (network == nullptr) // a modem that has failed
        return false;
    switch (mm_modem_3gpp_get_registration_state(MM_MODEM_3GPP(network))) {
    case MM_MODEM_3GPP_REGISTRATION_STATE_HOME:
    case MM_MODEM_3GPP_REGISTRATION_STATE_ROAMING:
    case MM_MODEM_3GPP_REGISTRATION_STATE_HOME_CSFB_NOT_PREFERRED:
    case MM_MODEM_3GPP_REGISTRATION_STATE_ROAMING_CSFB_NOT_PREFERRED:
        return true;
    default:
        return false;
    }
}

// ModemManager has no value for "unknown" but 0, which it also has until it has asked. An old value
// stands for the present one, as a modem that is dialled in over its only port cannot be asked.
int signalOf(MMModem *modem)
{
    const guint percent = mm_modem_get_signal_quality(modem, nullptr);
    return percent == 0 ? UNKNOWN_CSQ : toCsq(percent);
}

} // namespace

int toCsq(unsigned int percent)
{
    return static_cast<int>((std::min(percent, 100U) * MAX_CSQ + 99) / 100);
}

bool Modem::operator==(const Modem &other) const
{
    const auto values = [](const Modem &modem) {
        return std::tie(modem.imei, modem.iccid, modem.operatorName, modem.csq, modem.registered,
                        modem.enabled, modem.state, modem.failure);
    };
    return values(*this) == values(other);
}

// With one instance of ModemManager. GDBusObjectManagerClient outlives its service, but asks a new
// one in the main loop's thread and waits for the answer.
class Modems::Session
{
public:
    explicit Session(Modems &modems) : m_modems(modems) { connect(); }

    MMModem *modem(const std::string &path) const
    {
        const Object<GDBusObject> object = find(path);
        return object == nullptr ? nullptr : modemOf(object.get());
    }

private:
    struct Sim
    {
        std::string path;
        Object<MMSim> object; // nothing until it is known
        Handlers handlers;
    };

    void connect();
    void connected();
    Object<GDBusObject> find(const std::string &path) const;
    void refresh();
    Modem read(GDBusObject *object);
    std::string iccid(MMModem *modem);
    void fetchSim(const std::string &modemPath, const std::string &simPath);
    void simFetched(const std::string &modemPath, GObject *source, GAsyncResult *result);

    Modems &m_modems;
    Timer m_retry;
    Object<MMManager> m_manager;
    std::map<std::string, Sim> m_sims; // by the modem's path
    Handlers m_handlers;
    Calls m_calls;
};

// GDBusObjectManagerClient's asynchronous start works in a thread, with a name that the main loop's
// thread frees if the service dies meanwhile (GLib 2.74). The other one waits for two answers of a
// service that has just shown that it answers.
void Modems::Session::connect()
{
    g_dbus_connection_call(m_modems.m_connection.get(), MM_DBUS_SERVICE, MM_DBUS_PATH,
                           "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", nullptr,
                           nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_calls.cancellable(),
                           Calls::answer,
                           m_calls.expect([this](GObject *source, GAsyncResult *result) {
                               const Variant answer(g_dbus_connection_call_finish(
                                   G_DBUS_CONNECTION(source), result, nullptr));
                               if (answer)
                                   connected();
                               else
                                   m_retry.start(RETRY_TIME, [this] { connect(); });
                           }));
}

void Modems::Session::connected()
{
    m_manager.reset(mm_manager_new_sync(m_modems.m_connection.get(),
                                        G_DBUS_OBJECT_MANAGER_CLIENT_FLAGS_DO_NOT_AUTO_START,
                                        nullptr, nullptr));
    if (m_manager == nullptr) {
        m_retry.start(RETRY_TIME, [this] { connect(); });
        return;
    }
    for (const char *signal : {"object-added", "object-removed", "interface-added",
                               "interface-removed", "interface-proxy-properties-changed"})
        m_handlers.add(m_manager.get(), signal, [this] { refresh(); });
    refresh();
}

Object<GDBusObject> Modems::Session::find(const std::string &path) const
{
    if (m_manager == nullptr || !g_variant_is_object_path(path.c_str()))
        return nullptr;
    GDBusObjectManager *manager = G_DBUS_OBJECT_MANAGER(m_manager.get());
    return Object<GDBusObject>(g_dbus_object_manager_get_object(manager, path.c_str()));
}

void Modems::Session::refresh()
{
    std::map<std::string, Modem> modems;
    GList *objects = g_dbus_object_manager_get_objects(G_DBUS_OBJECT_MANAGER(m_manager.get()));
    for (GList *item = objects; item != nullptr; item = item->next) {
        auto *object = G_DBUS_OBJECT(item->data);
        if (modemOf(object) != nullptr)
            modems[g_dbus_object_get_object_path(object)] = read(object);
    }
    g_list_free_full(objects, g_object_unref);
    for (auto sim = m_sims.begin(); sim != m_sims.end();)
        sim = modems.count(sim->first) == 0 ? m_sims.erase(sim) : std::next(sim);
    m_modems.take(std::move(modems));
}

Modem Modems::Session::read(GDBusObject *object)
{
    MMModem *modem = modemOf(object);
    Modem known;
    known.imei = toString(mm_modem_get_equipment_identifier(modem));
    known.iccid = iccid(modem);
    known.state = mm_modem_get_state(modem);
    known.failure = mm_modem_get_state_failed_reason(modem);
    known.enabled = known.state >= MM_MODEM_STATE_ENABLED;
    known.registered = known.enabled && isRegistered(object);
    if (known.registered) {
        known.operatorName =
            toString(mm_modem_3gpp_get_operator_name(mm_object_peek_modem_3gpp(MM_OBJECT(object))));
        known.csq = signalOf(modem);
    }
    return known;
}

// The card is an object of its own, of which the modem has the path.
std::string Modems::Session::iccid(MMModem *modem)
{
    const std::string modemPath = mm_modem_get_path(modem);
    const std::string simPath = toString(mm_modem_get_sim_path(modem));
    const Sim &sim = m_sims[modemPath];
    if (sim.path != simPath)
        fetchSim(modemPath, simPath);
    return sim.object == nullptr ? "" : toString(mm_sim_get_identifier(sim.object.get()));
}

void Modems::Session::fetchSim(const std::string &modemPath, const std::string &simPath)
{
    Sim &sim = m_sims[modemPath];
    sim.handlers.clear();
    sim.object.reset();
    sim.path = simPath;
    if (simPath.empty() || simPath == NO_SIM)
        return;
    // Not mm_modem_get_sim(), which starts ModemManager.
    g_async_initable_new_async(
        MM_TYPE_SIM, G_PRIORITY_DEFAULT, m_calls.cancellable(), Calls::answer,
        m_calls.expect([this, modemPath](GObject *source, GAsyncResult *result) {
            simFetched(modemPath, source, result);
        }),
        "g-connection", m_modems.m_connection.get(),                 //
        "g-flags", G_DBUS_PROXY_FLAGS_DO_NOT_AUTO_START,             //
        "g-name", MM_DBUS_SERVICE, "g-object-path", simPath.c_str(), //
        "g-interface-name", MM_DBUS_INTERFACE_SIM, nullptr);
}

void Modems::Session::simFetched(const std::string &modemPath, GObject *source,
                                 GAsyncResult *result)
{
    Error error;
    const Object<GObject> object(
        g_async_initable_new_finish(G_ASYNC_INITABLE(source), result, &error));
    const auto sim = m_sims.find(modemPath);
    if (sim == m_sims.end())
        return;
    if (object == nullptr) {
        sim->second.path.clear(); // fetched again at the modem's next news
        return;
    }
    auto *fetched = MM_SIM(object.get());
    if (sim->second.path != g_dbus_proxy_get_object_path(G_DBUS_PROXY(fetched)))
        return; // exchanged meanwhile
    sim->second.object = share(fetched);
    sim->second.handlers.add(fetched, "g-properties-changed", [this] { refresh(); });
    refresh();
}

Modems::Modems(GDBusConnection *connection, std::function<void()> changed)
    : m_connection(share(connection)),
      m_changed(std::move(changed)),
      m_watch(g_bus_watch_name_on_connection(connection, MM_DBUS_SERVICE,
                                             G_BUS_NAME_WATCHER_FLAGS_NONE, onAppeared, onVanished,
                                             this, nullptr))
{
}

Modems::~Modems()
{
    g_bus_unwatch_name(m_watch);
}

void Modems::onAppeared(GDBusConnection *, const gchar *, const gchar *, gpointer self)
{
    auto &modems = *static_cast<Modems *>(self);
    modems.m_session = std::make_unique<Session>(modems);
}

void Modems::onVanished(GDBusConnection *, const gchar *, gpointer self)
{
    auto &modems = *static_cast<Modems *>(self);
    modems.m_session.reset();
    modems.take({});
}

void Modems::take(std::map<std::string, Modem> modems)
{
    if (m_modems == modems)
        return;
    m_modems = std::move(modems);
    m_changed();
}

void Modems::enable(const std::string &path, bool on, Done done)
{
    MMModem *modem = m_session == nullptr ? nullptr : m_session->modem(path);
    if (modem == nullptr)
        return done(false);
    g_dbus_proxy_set_default_timeout(G_DBUS_PROXY(modem), TIMEOUT);
    const auto finish = on ? mm_modem_enable_finish : mm_modem_disable_finish;
    (on ? mm_modem_enable : mm_modem_disable)(
        modem, m_calls.cancellable(), Calls::answer,
        m_calls.expect([finish, done = std::move(done)](GObject *source, GAsyncResult *result) {
            Error error;
            const bool isDone = finish(MM_MODEM(source), result, &error) != FALSE;
            if (!isDone)
                service::warn("a modem is not switched: " + error.text());
            done(isDone);
        }));
}

void Modems::renew(const std::string &path, Done done)
{
    MMModem *modem = m_session == nullptr ? nullptr : m_session->modem(path);
    if (modem == nullptr)
        return done(false);
    const std::string device = toString(mm_modem_get_device(modem));
    inhibit(device, true, [this, device, done = std::move(done)](bool worked) {
        if (worked)
            inhibit(device, false, done);
        else
            done(false);
    });
}

void Modems::inhibit(const std::string &device, bool on, Done done)
{
    const auto finish = [done = std::move(done)](GObject *source, GAsyncResult *result) {
        Error error;
        const Variant answer(
            g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
        done(answer != nullptr);
    };
    g_dbus_connection_call(m_connection.get(), MM_DBUS_SERVICE, MM_DBUS_PATH, MM_DBUS_INTERFACE,
                           "InhibitDevice",
                           g_variant_new("(sb)", device.c_str(), on ? TRUE : FALSE), nullptr,
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, TIMEOUT, m_calls.cancellable(),
                           Calls::answer, m_calls.expect(finish));
}

} // namespace network
