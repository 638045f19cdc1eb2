#include "services/common/EventLoop.h"

#include "services/common/Journal.h"

#include <csignal>
#include <systemd/sd-daemon.h>

namespace service {
namespace {

void endOnSignals(sd_event *event)
{
    sigset_t signals{};
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT})
        ::sigaddset(&signals, signal);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (const int signal : {SIGTERM, SIGINT})
        require(sd_event_add_signal(event, nullptr, signal, nullptr, nullptr), "signal");
}

Event newEvent()
{
    sd_event *event = nullptr;
    require(sd_event_default(&event), "event loop");
    return Event(event);
}

void serve(sd_event *event)
{
    sd_event_set_watchdog(event, 1);
    sd_notify(0, "READY=1");
    require(sd_event_loop(event), "event loop");
    sd_notify(0, "STOPPING=1");
}

} // namespace

int runOnEventLoop(
    const std::function<void(sd_event *event, const std::function<void()> &serve)> &make)
{
    try {
        const Event event = newEvent();
        endOnSignals(event.get());
        make(event.get(), [&] { serve(event.get()); });
        return 0;
    } catch (const std::exception &exception) {
        warn(exception.what());
        return 1;
    }
}

} // namespace service
