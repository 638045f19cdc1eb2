#include "platform/linux/Beeper.h"

#include "platform/paths.h"
#include "platform/posix/SmallFile.h"

#include <array>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>

namespace board {
namespace {

constexpr std::chrono::seconds SEARCH_PERIOD(5);
constexpr int BITS = 8; // of a byte

bool playsTones(int device)
{
    std::array<unsigned char, SND_CNT / BITS + 1> sounds{};
    return ::ioctl(device, EVIOCGBIT(EV_SND, sounds.size()), sounds.data()) >= 0 &&
           ((sounds[SND_TONE / BITS] >> (SND_TONE % BITS)) & 1U) != 0;
}

os::FileDescriptor openToneDevice()
{
    const std::string folder = panelPath("/dev/input/");
    for (const std::string &name : namesIn(folder)) {
        if (name.rfind("event", 0) != 0)
            continue;
        os::FileDescriptor device(
            ::open((folder + name).c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        if (device.isOpen() && playsTones(device.get()))
            return device;
    }
    return os::FileDescriptor();
}

} // namespace

bool Beeper::play(int hertz)
{
    if (m_device.isOpen() && write(hertz))
        return true;
    m_device = os::FileDescriptor();
    return find() && write(hertz);
}

bool Beeper::find()
{
    if (Clock::now() < m_nextSearch)
        return false;
    m_nextSearch = Clock::now() + SEARCH_PERIOD;
    m_device = openToneDevice();
    if (m_device.isOpen())
        m_fault.mended("the beeper is there");
    else
        m_fault.tell("no input device plays tones: the panel is silent");
    return m_device.isOpen();
}

bool Beeper::write(int hertz)
{
    input_event tone{};
    tone.type = EV_SND;
    tone.code = SND_TONE;
    tone.value = hertz;
    return ::write(m_device.get(), &tone, sizeof tone) == sizeof tone;
}

} // namespace board
