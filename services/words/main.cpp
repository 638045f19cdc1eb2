// sysset-words: the settings words over Modbus/TCP.
#include "platform/paths.h"
#include "services/common/EventLoop.h"
#include "services/common/Options.h"
#include "services/words/Journal.h"
#include "services/words/Service.h"

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

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1)
        return service::answerOption(argv[1], HELP, "sysset-words", SYSSET_VERSION);
    return service::runOnEventLoop([](sd_event *event, const std::function<void()> &serve) {
        const words::Service service(event,
                                     words::readSettings(panelPath("/etc/sysset/panel.conf")));
        words::say("listening on port " + std::to_string(service.port()));
        serve();
    });
}
