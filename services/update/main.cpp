// updateService: installs projects and logos from a U-disk.
#include "platform/paths.h"
#include "platform/posix/LocalUdp.h"
#include "services/common/EventLoop.h"
#include "services/common/Journal.h"
#include "services/common/Options.h"
#include "services/update/Server.h"

namespace {

constexpr const char *HELP =
    "Usage: updateService [--help] [--version]\n"
    "\n"
    "Checks the project and logo files that the settings program names, and installs them in\n"
    "/mnt/data. Is run by sysset-update.service; reads the sections [machine] and [update] of\n"
    "/etc/sysset/panel.conf.\n"
    "\n"
    "  --help      print this and end\n"
    "  --version   print the version and end\n"
    "\n"
    "SYSSET_ROOT in the environment is put before every path; SYSSET_UDP_DOWNLOAD is the UDP\n"
    "port instead of 27401.\n";

} // namespace

int main(int argc, char **argv)
{
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
