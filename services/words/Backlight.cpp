#include "services/words/Backlight.h"

#include "platform/paths.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <linux/fb.h>
#include <sys/ioctl.h>

using os::FileDescriptor;

namespace words {
namespace {

constexpr const char *BACKLIGHTS = "/sys/class/backlight";
constexpr const char *FRAME_BUFFER = "/dev/fb0";

using Path = std::filesystem::path;

// Returns 0 or the errno.
int writeNumber(const Path &path, unsigned number)
{
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file.isOpen())
        return errno;
    const std::string text = std::to_string(number) + "\n";
    return ::write(file.get(), text.data(), text.size()) < 0 ? errno : 0;
}

// Returns 0 if `act` worked on one backlight at least; else the last errno, or ENODEV.
int onEach(const std::function<int(const Path &)> &act)
{
    int best = ENODEV;
    std::error_code none;
    for (const auto &entry : std::filesystem::directory_iterator(panelPath(BACKLIGHTS), none)) {
        const int error = act(entry.path());
        if (best != 0)
            best = error;
    }
    return best;
}

int setPercent(const Path &backlight, unsigned percent)
{
    unsigned most = 0;
    if (!(std::ifstream(backlight / "max_brightness") >> most))
        return EIO;
    const auto value = static_cast<unsigned>((std::uint64_t{most} * percent + 50) / 100);
    return writeNumber(backlight / "brightness", std::max(value, 1U));
}

int blankFrameBuffer(bool dark)
{
    const FileDescriptor file(::open(panelPath(FRAME_BUFFER).c_str(), O_RDWR | O_CLOEXEC));
    if (!file.isOpen())
        return errno;
    const int level = dark ? FB_BLANK_POWERDOWN : FB_BLANK_UNBLANK;
    return ::ioctl(file.get(), FBIOBLANK, level) < 0 ? errno : 0;
}

} // namespace

void Backlight::setBrightness(unsigned percent)
{
    m_brightness.set(onEach([=](const Path &each) { return setPercent(each, percent); }));
}

// The levels of bl_power are those of the frame buffer.
bool Backlight::setDark(bool dark)
{
    const unsigned level = dark ? FB_BLANK_POWERDOWN : FB_BLANK_UNBLANK;
    int error = onEach([=](const Path &each) { return writeNumber(each / "bl_power", level); });
    if (error != 0 || !dark) {
        const int blanked = blankFrameBuffer(dark);
        error = error == 0 || blanked == 0 ? 0 : blanked;
    }
    if (dark || error == 0)
        m_dark.set(error);
    return error == 0;
}

} // namespace words
