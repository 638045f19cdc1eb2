// The client of timedated, which sets the clock and the hardware clock
// (org.freedesktop.timedate1(5)).
#pragma once

#include "services/words/Event.h"
#include "services/words/Request.h"

#include <ctime>
#include <functional>
#include <systemd/sd-bus.h>

namespace words {

struct BusDeleter
{
    void operator()(sd_bus *bus) const { sd_bus_close_unref(bus); }
};
struct SlotDeleter
{
    void operator()(sd_bus_slot *slot) const { sd_bus_slot_unref(slot); }
};

// Runs in the event loop's thread.
class TimeService
{
public:
    using Done = std::function<void(Failure)>;

    explicit TimeService(sd_event *event) : m_event(event) {}

    // Has timedated and polkit started, which takes longer than a client waits, unless that was
    // done a moment ago: both end when nobody has asked anything for half a minute.
    void wake();

    // Sets the clock, with the synchronisation over the network switched off. Returns NONE if that
    // is under way; then calls `done` once, within 700 ms, with NONE, with BUSY if it was not done
    // in that time, or with DEVICE_FAILURE if it was refused. Returns BUSY while another call is
    // under way, DEVICE_FAILURE without a system bus; `done` is not called then.
    Failure set(std::time_t time, Done done);

private:
    using Step = void (TimeService::*)(sd_bus_message *reply);

    bool connect();
    int ping(const char *service, sd_bus_slot **slot);
    int begin();
    int setDeadline();
    void wakePolkit(sd_bus_message *);
    void setTime(sd_bus_message *);
    void onTimeSet(sd_bus_message *reply);
    void onSyncOff(sd_bus_message *reply);
    void await(Step next, sd_bus_slot *slot, int result);
    void forget();
    void refuse(const std::string &why);
    void finish(Failure failure);
    static int onAwake(sd_bus_message *reply, void *self, sd_bus_error *);
    static int onReply(sd_bus_message *reply, void *self, sd_bus_error *);
    static int onLate(sd_event_source *, std::uint64_t, void *self);

    sd_event *m_event;
    std::unique_ptr<sd_bus, BusDeleter> m_bus;
    std::unique_ptr<sd_bus_slot, SlotDeleter> m_call;
    Source m_late;
    Step m_next = nullptr;
    Done m_done;
    std::uint64_t m_begun = 0; // us, CLOCK_MONOTONIC, as the next
    std::uint64_t m_woken = 0;
    std::time_t m_time = 0;
    bool m_bSyncOff = false; // has been tried
};

} // namespace words
