// cloudService: the cloud service of an operator panel.
#include "services/cloud/Service.h"
#include "services/common/BusService.h"
#include "services/common/Journal.h"
#include "services/common/Options.h"

#include <csignal>
#include <exception>
#include <filesystem>
#include <openssl/crypto.h>

namespace {

constexpr const char *NAME = "org.sysset.Cloud1";
constexpr const char *HELPER = "cloudEnrol"; // in the same folder

constexpr const char *HELP =
    "Usage: cloudService [--help] [--version]\n"
    "\n"
    "Keeps the panel's connection with the remote-access cloud for the settings program, on the\n"
    "system bus: clock, certificate, MQTT. Is run by sysset-cloud.service.\n"
    "\n"
    "  --help      print this and end\n"
    "  --version   print the version and end\n"
    "\n"
    "SYSSET_ROOT in the environment is put before every path.\n";

std::shared_ptr<void> makeService(GDBusConnection *bus)
{
    const auto self = std::filesystem::read_symlink("/proc/self/exe");
    return std::make_shared<cloud::Service>(bus, self.parent_path() / HELPER);
}

// A thread that waits for a server at the end still uses OpenSSL: nothing of it is freed.
void prepareLibraries()
{
    std::signal(SIGPIPE, SIG_IGN);
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1)
        return service::answerOption(argv[1], HELP, "cloudService", SYSSET_VERSION);
    try {
        prepareLibraries();
        service::serveOnBus(NAME, makeService);
        return 0;
    } catch (const std::exception &exception) {
        service::warn(exception.what());
        return 1;
    }
}
