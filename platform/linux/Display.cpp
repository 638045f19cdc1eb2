// PLATFORM::CPlatLcd: the framebuffer and its backlight.
#include "platform/board.h"
#include "platform/linux/Backlight.h"
#include "platform/linux/Journal.h"
#include "platform/linux/PanelConf.h"
#include "platform/paths.h"
#include "platform/posix/FileDescriptor.h"

#include <fcntl.h>
#include <linux/fb.h>
#include <sys/ioctl.h>

namespace {

constexpr int FAILED = -1;
constexpr int USUAL_DEPTH = 32; // bits a pixel

// Kept open, so that asking costs one system call.
const os::FileDescriptor &framebuffer()
{
    static const os::FileDescriptor &file = *new os::FileDescriptor(
        ::open(panelPath("/dev/fb0").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file;
}

bool askFramebuffer(fb_var_screeninfo &screen)
{
    return framebuffer().isOpen() &&
           ::ioctl(framebuffer().get(), FBIOGET_VSCREENINFO, &screen) == 0 && screen.xres > 0 &&
           screen.yres > 0;
}

// Where the screen is no framebuffer the maker may have named its size.
bool askPanelConf(fb_var_screeninfo &screen)
{
    const board::PanelConf &conf = board::panelConf();
    screen.xres = static_cast<unsigned int>(conf.width);
    screen.yres = static_cast<unsigned int>(conf.height);
    screen.bits_per_pixel = USUAL_DEPTH;
    return conf.width > 0;
}

} // namespace

namespace PLATFORM {

int CPlatLcd::open()
{
    int width = 0;
    int height = 0;
    int depth = 0;
    const int result = getResolution(width, height, depth);
    static board::Fault &fault = *new board::Fault;
    if (result < 0)
        fault.tell("no framebuffer /dev/fb0, and panel.conf names no size: 800x480 is taken");
    return result;
}

int CPlatLcd::getResolution(int &width, int &height, int &depth)
{
    fb_var_screeninfo screen{};
    if (!askFramebuffer(screen) && !askPanelConf(screen))
        return FAILED;
    width = static_cast<int>(screen.xres);
    height = static_cast<int>(screen.yres);
    depth = static_cast<int>(screen.bits_per_pixel);
    return 0;
}

int CPlatLcd::setBrightness(int percent)
{
    return board::setBacklight(percent) ? 0 : FAILED;
}

} // namespace PLATFORM
