// Restart and the system partition: requests to logind and systemd.
#include "platform/board.h"
#include "platform/linux/Journal.h"
#include "platform/linux/PanelConf.h"
#include "platform/linux/SystemBus.h"
#include "platform/linux/Units.h"

namespace {

constexpr int FAILED = -1;
constexpr int HARDWARE = 1;
constexpr std::chrono::milliseconds REBOOT_TIMEOUT(2000);
constexpr std::chrono::milliseconds REMOUNT_TIMEOUT(3000);

// org.freedesktop.login1(5)
constexpr board::BusMethod REBOOT{"org.freedesktop.login1", "/org/freedesktop/login1",
                                  "org.freedesktop.login1.Manager", "Reboot"};
constexpr bool ASK_NOBODY = false;

constexpr const char *RESET_UNIT = "sysset-reset.service";
constexpr const char *WRITABLE_UNIT = "sysset-remount@rw.service";
constexpr const char *READ_ONLY_UNIT = "sysset-remount@ro.service";

bool rebootSystem()
{
    return bool(board::systemBus().call(REBOOT, REBOOT_TIMEOUT,
                                        [](sdbus::MethodCall &call) { call << ASK_NOBODY; }));
}

bool resetBoard()
{
    return board::startUnit(RESET_UNIT, REBOOT_TIMEOUT);
}

} // namespace

namespace PLATFORM {

int CPlatCpu::enableReboot()
{
    return board::panelConf().hardwareReset ? 1 : 0;
}

} // namespace PLATFORM

// Where the one way fails the other one is taken: a panel whose program has ended is of no use.
int my_reboot(int hardware)
{
    const bool reset = hardware == HARDWARE && board::panelConf().hardwareReset;
    if (reset ? resetBoard() || rebootSystem() : rebootSystem() || resetBoard())
        return 0;
    board::journal(board::Severity::Error, "neither logind nor systemd restarts the panel");
    return FAILED;
}

int remountPartion(int mode, const std::string &partition)
{
    if ((mode != 0 && mode != 1) || !partition.empty())
        return FAILED;
    const char *unit = mode == 1 ? WRITABLE_UNIT : READ_ONLY_UNIT;
    return board::runUnit(unit, REMOUNT_TIMEOUT) ? 0 : FAILED;
}
