#include "platform/linux/Ready.h"

#include <systemd/sd-daemon.h>

namespace board {

void tellReady()
{
    sd_notify(0, "READY=1");
}

} // namespace board
