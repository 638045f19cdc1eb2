// The clock, kept by systemd-timesyncd (org.freedesktop.timesync1(5)) after the time server of the
// cloud.
#pragma once

#include "services/common/GLib.h"

#include <functional>
#include <memory>
#include <string>

namespace cloud {

class ClockSync
{
public:
    using Done = std::function<void(const std::string &trouble)>; // "" when it is synchronised

    explicit ClockSync(GDBusConnection *bus) : m_bus(service::share(bus)) {}
    ClockSync(const ClockSync &) = delete;
    ClockSync &operator=(const ClockSync &) = delete;

    // Has the clock follow `server`, synchronisation switched on if it is off, and calls `done`
    // when an answer of this server has been taken. At once if `anew` is false, and one has been
    // taken before by the timesyncd that runs: the clock keeps going where the server does not.
    // Nothing is called of one that ends.
    void begin(const std::string &server, bool anew, const Done &done);
    void end() { m_run.reset(); }

private:
    class Run;

    service::Object<GDBusConnection> m_bus;
    std::shared_ptr<Run> m_run;
    std::string m_known; // the server that the clock has last been taken from
};

} // namespace cloud
