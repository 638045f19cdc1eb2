// updateService: installs projects, logos and firmware from a U-disk.
#include "platform/paths.h"
#include "platform/posix/LocalUdp.h"
#include "services/common/EventLoop.h"
#include "services/common/Journal.h"
#include "services/common/Options.h"
#include "services/update/Server.h"
#include "services/update/Trial.h"

#include <string_view>

namespace {

constexpr const char *HELP =
    "Usage: updateService [--give-up | --help | --version]\n"
    "\n"
    "Checks the project, logo and firmware files that the settings program names, and installs\n"
    "them: in /mnt/data, or by RAUC in the slot that does not run. Is run by\n"
    "sysset-update.service; reads the sections [machine] and [update] of /etc/sysset/panel.conf.\n"
    "\n"
    "  --give-up   start the board anew for a firmware that has not proved itself, if there is\n"
    "              another one; 1 if there is none\n"
    "  --help      print this and end\n"
    "  --version   print the version and end\n"
    "\n"
    "SYSSET_ROOT in the environment is put before every path; SYSSET_UDP_DOWNLOAD is the UDP\n"
    "port instead of 27401.\n";

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2 && std::string_view(argv[1]) == "--give-up")
        return updates::giveUpFirmware() ? 0 : 1;
    if (argc > 1)
        return service::answerOption(argv[1], HELP, "updateService", SYSSET_VERSION);
    return service::runOnEventLoop([](sd_event *event, const std::function<void()> &serve) {
        updates::Desk desk(event, updates::readSettings(panelPath("/etc/sysset/panel.conf")));
        const int port = os::localUdpPort("DownLoad");
        const updates::Server server(event, port, desk);
        service::say("listening on port " + std::to_string(port));
        serve();
    });
}
