#include "app/Shutdown.h"

#include "platform/board.h"
#include "platform/cos_time.h"

#include <cstdlib>
#include <unistd.h>

namespace {

constexpr int BEFORE_REBOOT_MS = 500;

} // namespace

void settle()
{
    sync();
    COS::CosTime::SleepCos(BEFORE_REBOOT_MS);
}

void reboot(int hardware)
{
    my_reboot(hardware);
    std::exit(0); // NOLINT(concurrency-mt-unsafe): what still runs stops itself at exit
}
