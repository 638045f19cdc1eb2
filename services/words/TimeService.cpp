#include "services/words/TimeService.h"

#include "services/words/Journal.h"

#include <utility>

namespace words {
namespace {

constexpr const char *TIMEDATED = "org.freedesktop.timedate1";
constexpr const char *TIMEDATED_PATH = "/org/freedesktop/timedate1";
constexpr const char *POLKIT = "org.freedesktop.PolicyKit1";
constexpr const char *SYNC_IS_ON = "org.freedesktop.timedate1.AutomaticTimeSyncEnabled";

constexpr std::uint64_t SECOND = 1'000'000;       // us
constexpr std::uint64_t LONGEST = 700'000;        // us; clients wait 800 ms
constexpr std::uint64_t STAYS_AWAKE = 20'000'000; // us; they end themselves after 30 s

std::uint64_t now(sd_event *event)
{
    std::uint64_t time = 0;
    sd_event_now(event, CLOCK_MONOTONIC, &time);
    return time;
}

} // namespace

bool TimeService::connect()
{
    if (m_bus && sd_bus_is_open(m_bus.get()) > 0)
        return true;
    sd_bus *bus = nullptr;
    if (sd_bus_open_system(&bus) < 0)
        return false;
    m_bus.reset(bus);
    return sd_bus_attach_event(bus, m_event, SD_EVENT_PRIORITY_NORMAL) >= 0;
}

// Without a slot nobody waits for the answer. It is asked for all the same: polkit answers also who
// wants no answer, and the bus tells the journal of each such one.
int TimeService::ping(const char *service, sd_bus_slot **slot)
{
    return sd_bus_call_method_async(m_bus.get(), slot, service, "/", "org.freedesktop.DBus.Peer",
                                    "Ping", slot == nullptr ? onAwake : onReply, this, "");
}

void TimeService::wake()
{
    const std::uint64_t time = now(m_event);
    if ((m_woken != 0 && time - m_woken < STAYS_AWAKE) || !connect())
        return;
    m_woken = time;
    ping(TIMEDATED, nullptr);
    ping(POLKIT, nullptr);
}

Failure TimeService::set(std::time_t time, Done done)
{
    if (m_done)
        return Failure::BUSY;
    m_time = time;
    m_bSyncOff = false;
    const int result = begin();
    if (result < 0) {
        warn("clock not set: " + reason(-result));
        forget();
        return Failure::DEVICE_FAILURE;
    }
    m_done = std::move(done);
    return Failure::NONE;
}

// A time that lay waiting until timedated is up would be a wrong one, and set after the client has
// been told that it was not.
int TimeService::begin()
{
    m_begun = m_woken = now(m_event);
    if (!connect())
        return -ENOTCONN;
    const int result = setDeadline();
    if (result < 0)
        return result;
    sd_bus_slot *slot = nullptr;
    const int called = ping(TIMEDATED, &slot);
    m_call.reset(slot);
    m_next = &TimeService::wakePolkit;
    return called;
}

int TimeService::setDeadline()
{
    sd_event_source *source = nullptr;
    const int result =
        sd_event_add_time(m_event, &source, CLOCK_MONOTONIC, m_begun + LONGEST, 1, onLate, this);
    m_late.reset(source);
    return result;
}

void TimeService::wakePolkit(sd_bus_message *)
{
    sd_bus_slot *slot = nullptr;
    const int result = ping(POLKIT, &slot);
    await(&TimeService::setTime, slot, result);
}

void TimeService::setTime(sd_bus_message *)
{
    const std::uint64_t passed = now(m_event) - m_begun;
    const auto time =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(m_time) * SECOND + passed);
    sd_bus_slot *slot = nullptr;
    const int result =
        sd_bus_call_method_async(m_bus.get(), &slot, TIMEDATED, TIMEDATED_PATH, TIMEDATED,
                                 "SetTime", onReply, this, "xbb", time, 0, 0);
    await(&TimeService::onTimeSet, slot, result);
}

// timedated refuses as long as the time comes over the network.
void TimeService::onTimeSet(sd_bus_message *reply)
{
    const sd_bus_error *error = sd_bus_message_get_error(reply);
    if (error == nullptr) {
        say("clock set");
        return finish(Failure::NONE);
    }
    if (m_bSyncOff || sd_bus_error_has_name(error, SYNC_IS_ON) == 0)
        return refuse(error->message == nullptr ? error->name : error->message);
    m_bSyncOff = true;
    sd_bus_slot *slot = nullptr;
    const int result = sd_bus_call_method_async(m_bus.get(), &slot, TIMEDATED, TIMEDATED_PATH,
                                                TIMEDATED, "SetNTP", onReply, this, "bb", 0, 0);
    await(&TimeService::onSyncOff, slot, result);
}

void TimeService::onSyncOff(sd_bus_message *reply)
{
    setTime(reply);
}

void TimeService::await(Step next, sd_bus_slot *slot, int result)
{
    m_call.reset(slot);
    m_next = next;
    if (result < 0)
        refuse(reason(-result));
}

int TimeService::onAwake(sd_bus_message *, void *, sd_bus_error *)
{
    return 0;
}

int TimeService::onReply(sd_bus_message *reply, void *self, sd_bus_error *)
{
    auto *service = static_cast<TimeService *>(self);
    (service->*service->m_next)(reply);
    return 0;
}

int TimeService::onLate(sd_event_source *, std::uint64_t, void *self)
{
    warn("clock not set: no answer from timedated in time");
    static_cast<TimeService *>(self)->finish(Failure::BUSY);
    return 0;
}

void TimeService::refuse(const std::string &why)
{
    warn("clock not set: " + why);
    finish(Failure::DEVICE_FAILURE);
}

void TimeService::finish(Failure failure)
{
    forget();
    std::exchange(m_done, nullptr)(failure);
}

void TimeService::forget()
{
    m_call.reset();
    m_late.reset();
}

} // namespace words
