#include "platform/linux/Units.h"

#include "platform/cos_time.h"
#include "platform/linux/SystemBus.h"

#include <string>
#include <tuple>

namespace board {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr const char *SYSTEMD = "org.freedesktop.systemd1";
constexpr const char *MANAGER = "org.freedesktop.systemd1.Manager";
constexpr const char *MANAGER_PATH = "/org/freedesktop/systemd1";
constexpr const char *UNIT = "org.freedesktop.systemd1.Unit";
constexpr int LOOK_EVERY_MS = 20;

using Job = sdbus::Struct<std::uint32_t, sdbus::ObjectPath>; // number 0: none waits or runs

milliseconds leftTo(Clock::time_point deadline)
{
    return std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
}

// The object of the unit; empty if systemd does not know it.
std::string pathOf(const char *unit, milliseconds timeout)
{
    const auto outcome =
        systemBus().call({SYSTEMD, MANAGER_PATH, MANAGER, "LoadUnit"}, timeout,
                         [&](sdbus::MethodCall &call) { call << std::string(unit); });
    if (!outcome)
        return {};
    sdbus::ObjectPath path;
    sdbus::MethodReply reply = *outcome.reply;
    reply >> path;
    return path;
}

} // namespace

bool startUnit(const char *unit, milliseconds timeout)
{
    return bool(systemBus().call(
        {SYSTEMD, MANAGER_PATH, MANAGER, "StartUnit"}, timeout,
        [&](sdbus::MethodCall &call) { call << std::string(unit) << std::string("replace"); }));
}

// The unit is looked at rather than its job's signal waited for: whoever subscribes to that is told
// of every other unit too.
bool runUnit(const char *unit, milliseconds timeout)
{
    const auto deadline = Clock::now() + timeout;
    if (!startUnit(unit, timeout))
        return false;
    const std::string path = pathOf(unit, leftTo(deadline));
    while (!path.empty() && Clock::now() < deadline) {
        const auto job =
            systemBus().property<Job>({SYSTEMD, path.c_str(), UNIT, "Job"}, leftTo(deadline));
        const auto state = systemBus().property<std::string>(
            {SYSTEMD, path.c_str(), UNIT, "ActiveState"}, leftTo(deadline));
        if (!job || !state)
            return false;
        if (job->get<0>() == 0)
            return *state != "failed";
        COS::CosTime::SleepCos(LOOK_EVERY_MS);
    }
    return false;
}

} // namespace board
