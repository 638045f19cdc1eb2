#include "platform/linux/ScreenWait.h"

#include "platform/cos_time.h"
#include "platform/linux/Journal.h"
#include "platform/paths.h"
#include "platform/posix/FileDescriptor.h"

#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <systemd/sd-daemon.h>

namespace board {
namespace {

constexpr int LOOK_EVERY_MS = 200;

bool drawsOnFramebuffer()
{
    const char *platform = std::getenv("QT_QPA_PLATFORM"); // NOLINT(concurrency-mt-unsafe)
    return platform != nullptr && std::string_view(platform) == "linuxfb";
}

bool isThere()
{
    const os::FileDescriptor file(::open(panelPath("/dev/fb0").c_str(), O_RDWR | O_CLOEXEC));
    return file.isOpen();
}

} // namespace

int waitForScreen()
{
    Fault fault;
    while (drawsOnFramebuffer() && !isThere()) {
        fault.tell("no framebuffer /dev/fb0: the program waits for it");
        sd_notify(0, "EXTEND_TIMEOUT_USEC=5000000");
        COS::CosTime::SleepCos(LOOK_EVERY_MS);
    }
    fault.mended("the framebuffer is there");
    return 0;
}

} // namespace board
