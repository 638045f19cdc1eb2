#include "services/cloud/ClockSync.h"

#include <utility>

namespace cloud {
namespace {

using service::Calls;
using service::Error;
using service::Variant;

constexpr const char *TIMEDATE = "org.freedesktop.timedate1";
constexpr const char *TIMEDATE_PATH = "/org/freedesktop/timedate1";
constexpr const char *TIMESYNC = "org.freedesktop.timesync1";
constexpr const char *TIMESYNC_PATH = "/org/freedesktop/timesync1";
constexpr const char *MANAGER = "org.freedesktop.timesync1.Manager";
constexpr const char *PROPERTIES = "org.freedesktop.DBus.Properties";
constexpr int CALL_MS = 7000;

// NTPMessage: leap indicator first, then thirteen fields, the last of them how many have come. One
// that timesyncd has ignored will do: it ignores those alone that differ from the clock by less
// than their round trip.
constexpr const char *MESSAGE_TYPE = "(uuuuittayttttbtt)";
constexpr gsize LEAP = 0;
constexpr gsize COUNT = 13;
constexpr guint32 NOT_SYNCHRONISED = 3; // RFC 5905, figure 9

template <typename T, T (*Get)(GVariant *)>
T field(GVariant *message, gsize index)
{
    const Variant value(g_variant_get_child_value(message, index));
    return Get(value.get());
}

bool isTaken(GVariant *message)
{
    return message != nullptr && g_variant_is_of_type(message, G_VARIANT_TYPE(MESSAGE_TYPE)) &&
           field<guint32, g_variant_get_uint32>(message, LEAP) != NOT_SYNCHRONISED &&
           field<guint64, g_variant_get_uint64>(message, COUNT) > 0;
}

// The property `name` of a{sv}; null if it is not there.
Variant lookUp(GVariant *properties, const char *name)
{
    return Variant(g_variant_lookup_value(properties, name, nullptr));
}

std::string textOf(const Variant &value)
{
    const bool isText = value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING);
    return isText ? g_variant_get_string(value.get(), nullptr) : "";
}

std::string firstOf(const Variant &texts)
{
    const bool isList = texts && g_variant_is_of_type(texts.get(), G_VARIANT_TYPE_STRING_ARRAY) &&
                        g_variant_n_children(texts.get()) > 0;
    return isList ? textOf(Variant(g_variant_get_child_value(texts.get(), 0))) : "";
}

} // namespace

// One begin(), until it is ended. Once it is done it does no more than name the server to a
// timesyncd that is new.
class ClockSync::Run
{
public:
    enum class Mood { Known, Unknown, Anew };

    Run(GDBusConnection *bus, std::string server, Mood mood, Done done)
        : m_bus(bus), m_server(std::move(server)), m_mood(mood), m_done(std::move(done))
    {
        m_watch = g_bus_watch_name_on_connection(bus, TIMESYNC, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                 onThere, onAway, this, nullptr);
    }
    ~Run()
    {
        g_bus_unwatch_name(m_watch);
        unsubscribe();
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

private:
    using Taken = std::function<void(GVariant *reply)>;

    static void onThere(GDBusConnection *, const char *, const char *, gpointer self)
    {
        static_cast<Run *>(self)->lookAt();
    }
    static void onAway(GDBusConnection *, const char *, gpointer self)
    {
        static_cast<Run *>(self)->switchOn();
    }
    static void onChanged(GDBusConnection *, const char *, const char *, const char *, const char *,
                          GVariant *arguments, gpointer self)
    {
        const Variant changed(g_variant_get_child_value(arguments, 1));
        if (isTaken(lookUp(changed.get(), "NTPMessage").get()))
            static_cast<Run *>(self)->askWho();
    }

    // The unit that synchronises does not run, as after the operator has set the clock. Once done
    // that is what he wants.
    void switchOn()
    {
        unsubscribe();
        if (!m_done)
            return;
        call(TIMEDATE, TIMEDATE_PATH, TIMEDATE, "SetNTP", g_variant_new("(bb)", TRUE, FALSE),
             nullptr);
    }

    void lookAt()
    {
        if (!m_done)
            return name();
        if (m_signal != 0)
            return;
        m_signal = g_dbus_connection_signal_subscribe(
            m_bus, TIMESYNC, PROPERTIES, "PropertiesChanged", TIMESYNC_PATH, MANAGER,
            G_DBUS_SIGNAL_FLAGS_NONE, onChanged, this, nullptr);
        if (m_mood == Mood::Anew)
            return name();
        call(TIMESYNC, TIMESYNC_PATH, PROPERTIES, "GetAll", g_variant_new("(s)", MANAGER),
             [this](GVariant *reply) {
                 const Variant all(g_variant_get_child_value(reply, 0));
                 isSynchronised(all.get()) ? finish("") : name();
             });
    }

    bool isSynchronised(GVariant *all) const
    {
        if (firstOf(lookUp(all, "RuntimeNTPServers")) != m_server)
            return false;
        return m_mood == Mood::Known || (textOf(lookUp(all, "ServerName")) == m_server &&
                                         isTaken(lookUp(all, "NTPMessage").get()));
    }

    // It asks the server at once, whatever it waited for.
    void name()
    {
        const char *const servers[] = {m_server.c_str(), nullptr};
        call(TIMESYNC, TIMESYNC_PATH, MANAGER, "SetRuntimeNTPServers",
             g_variant_new("(^as)", servers), nullptr);
    }

    void askWho()
    {
        call(TIMESYNC, TIMESYNC_PATH, PROPERTIES, "Get",
             g_variant_new("(ss)", MANAGER, "ServerName"), [this](GVariant *reply) {
                 const Variant boxed(g_variant_get_child_value(reply, 0));
                 if (textOf(Variant(g_variant_get_variant(boxed.get()))) == m_server)
                     finish("");
             });
    }

    void call(const char *service, const char *path, const char *interface, const char *method,
              GVariant *arguments, Taken taken)
    {
        g_dbus_connection_call(
            m_bus, service, path, interface, method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
            CALL_MS, m_calls.cancellable(), Calls::answer,
            m_calls.expect(
                [this, method, taken = std::move(taken)](GObject *, GAsyncResult *result) {
                    Error error;
                    const Variant reply(g_dbus_connection_call_finish(m_bus, result, &error));
                    if (!reply)
                        finish(std::string(method) + ": " + error.text());
                    else if (taken)
                        taken(reply.get());
                }));
    }

    void unsubscribe()
    {
        if (m_signal != 0)
            g_dbus_connection_signal_unsubscribe(m_bus, std::exchange(m_signal, 0));
    }

    void finish(const std::string &trouble)
    {
        unsubscribe();
        const Done done = std::exchange(m_done, nullptr);
        if (done)
            done(trouble); // which may end this
    }

    GDBusConnection *m_bus;
    std::string m_server;
    Mood m_mood;
    Done m_done;
    guint m_watch = 0;
    guint m_signal = 0;
    Calls m_calls;
};

void ClockSync::begin(const std::string &server, bool anew, const Done &done)
{
    const auto mood = anew                ? Run::Mood::Anew
                      : m_known == server ? Run::Mood::Known
                                          : Run::Mood::Unknown;
    m_run = std::make_shared<Run>(m_bus.get(), server, mood,
                                  [this, server, done](const std::string &trouble) {
                                      if (trouble.empty())
                                          m_known = server;
                                      done(trouble);
                                  });
}

} // namespace cloud
