// The mobile modems that ModemManager knows (org.freedesktop.ModemManager1). It is never started
// from here, and may come late, die and come back: meanwhile there are none.
#pragma once

#include "services/network/GLib.h"

#include <functional>
#include <libmm-glib.h>
#include <map>
#include <memory>
#include <string>

namespace network {

struct Modem
{
    std::string imei;  // where ModemManager has read it, also without a card
    std::string iccid; // "" without a card
    std::string operatorName;
    int csq = 99;            // +CSQ (3GPP TS 27.007, 8.5): 0 to 31; 99 unknown or not registered
    bool registered = false; // at home or roaming, for data
    bool enabled = false;
    MMModemState state = MM_MODEM_STATE_UNKNOWN; // MM_MODEM_STATE_LOCKED: waits for a PIN or PUK
    // For MM_MODEM_STATE_FAILED, such as MM_MODEM_STATE_FAILED_REASON_SIM_MISSING.
    MMModemStateFailedReason failure = MM_MODEM_STATE_FAILED_REASON_NONE;

    bool operator==(const Modem &other) const;
};

// The +CSQ that ModemManager has made this percentage of, which is CSQ * 100 / 31.
int toCsq(unsigned int percent);

// Main loop's thread; nothing blocks.
class Modems
{
public:
    using Done = std::function<void(bool)>;

    // `changed` is called after every change of all().
    Modems(GDBusConnection *connection, std::function<void()> changed);
    ~Modems();
    Modems(const Modems &) = delete;
    Modems &operator=(const Modems &) = delete;

    // By object path, which NetworkManager's device has as its "udi".
    const std::map<std::string, Modem> &all() const { return m_modems; }
    // Whether ModemManager is there.
    bool isRunning() const { return m_session != nullptr; }

    // `done` is told whether it is enabled, or disabled; false where there is no such modem, and
    // then before this returns; also after ENABLE_TIME, or when ModemManager dies meanwhile. It is
    // not called any more when this has ended.
    void enable(const std::string &path, bool on, Done done);

    // Has ModemManager probe the modem anew: it vanishes, and comes back some seconds later under
    // another path. `done` is told whether that has begun; else as above. A cure for
    // ModemManager 1.20, which never asks a modem for its signal again that has been disabled and
    // enabled, unless the modem tells of it by itself: csq stays 99.
    void renew(const std::string &path, Done done);

    // A modem that searches all bands takes half a minute and more.
    static constexpr std::chrono::seconds ENABLE_TIME{90};

private:
    class Session;

    static void onAppeared(GDBusConnection *, const gchar *, const gchar *, gpointer self);
    static void onVanished(GDBusConnection *, const gchar *, gpointer self);
    void inhibit(const std::string &device, bool on, Done done);
    void take(std::map<std::string, Modem> modems);

    Object<GDBusConnection> m_connection;
    std::function<void()> m_changed;
    std::map<std::string, Modem> m_modems;
    Calls m_calls;
    std::unique_ptr<Session> m_session; // with one instance of ModemManager
    guint m_watch = 0;
};

} // namespace network
