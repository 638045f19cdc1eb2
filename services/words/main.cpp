// sysset-words: the settings words over Modbus/TCP.
#include "platform/paths.h"
#include "services/common/Options.h"
#include "services/words/Journal.h"
#include "services/words/Service.h"

#include <csignal>
#include <systemd/sd-daemon.h>

namespace {

constexpr const char *HELP =
    "Usage: sysset-words [--help] [--version]\n"
    "\n"
    "Serves the panel's settings words over Modbus/TCP on the loopback network, keeps them in\n"
    "/mnt/data/sysset/words, sets the clock, and rules the backlight. Is run by\n"
    "sysset-words.service; reads the section [words] of /etc/sysset/panel.conf.\n"
    "\n"
    "  --help      print this and end\n"
    "  --version   print the version and end\n"
    "\n"
    "SYSSET_ROOT in the environment is put before every path.\n";

// Before there are threads, so that all of them leave the two signals to the loop.
void endOnSignals(sd_event *event)
{
    sigset_t signals{};
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT})
        ::sigaddset(&signals, signal);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (const int signal : {SIGTERM, SIGINT})
        words::require(sd_event_add_signal(event, nullptr, signal, nullptr, nullptr), "signal");
}

words::Event newEvent()
{
    sd_event *event = nullptr;
    words::require(sd_event_default(&event), "event loop");
    return words::Event(event);
}

void serve()
{
    const words::Event event = newEvent();
    endOnSignals(event.get());
    const words::Service service(event.get(),
                                 words::readSettings(panelPath("/etc/sysset/panel.conf")));
    sd_event_set_watchdog(event.get(), 1);
    words::say("listening on port " + std::to_string(service.port()));
    sd_notify(0, "READY=1");
    words::require(sd_event_loop(event.get()), "event loop");
    sd_notify(0, "STOPPING=1");
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1)
        return service::answerOption(argv[1], HELP, "sysset-words", SYSSET_VERSION);
    try {
        serve();
        return 0;
    } catch (const std::exception &exception) {
        words::warn(exception.what());
        return 1;
    }
}
