#include "platform/linux/HotPlug.h"

#include "platform/linux/Journal.h"
#include "platform/linux/Mounts.h"
#include "platform/paths.h"
#include "platform/posix/threads.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace board {
namespace {

constexpr int FAILED = -1;

bool isSame(const Plugged &left, const Plugged &right)
{
    return left.key == right.key && left.info.nType == right.info.nType &&
           left.info.sMountPath == right.info.sMountPath;
}

// The kernel gives no size, and the text may change while it is read.
std::string readFromStart(int fd)
{
    std::string text;
    std::array<char, 4096> block{};
    ssize_t got = 0;
    for (off_t offset = 0; (got = ::pread(fd, block.data(), block.size(), offset)) > 0;
         offset += got)
        text.append(block.data(), static_cast<std::size_t>(got));
    return text;
}

} // namespace

std::vector<Plugged> newIn(const std::vector<Plugged> &now, const std::vector<Plugged> &before)
{
    std::vector<Plugged> fresh;
    for (const Plugged &device : now) {
        const auto known = [&](const Plugged &other) { return isSame(other, device); };
        if (std::none_of(before.begin(), before.end(), known))
            fresh.push_back(device);
    }
    return fresh;
}

std::vector<Plugged> udisksIn(const std::string &mountinfo)
{
    std::vector<Plugged> found;
    for (const Mount &mount : mountsBelow(panelPath(UDISK_FOLDER), mountinfo))
        found.push_back({{PLATFORM::DEV_UDISK, mount.path}, mount.id});
    return found;
}

int HotPlug::add(const std::vector<PLATFORM::DEV_TYPE_T> &types,
                 const PLATFORM::MediaCallbacks &callbacks, void *context)
{
    const std::lock_guard lock(m_mutex);
    if (m_wake == -1 && !start())
        return FAILED;
    m_waiting.push_back({types, callbacks, context, {}});
    const std::uint64_t once = 1;
    return ::write(m_wake, &once, sizeof once) == sizeof once ? 0 : FAILED;
}

bool HotPlug::start()
{
    m_mountinfo = ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    m_wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_mountinfo != -1 && m_wake != -1 && os::startThread("media", [this] { run(); }))
        return true;
    journal(Severity::Error, "hot-plug cannot be watched: no U-disk will be seen");
    ::close(m_mountinfo);
    ::close(m_wake);
    m_wake = -1;
    return false;
}

// The devices live as long as the thread, which is to the end of the process.
void HotPlug::run()
{
    m_devices = new Devices;
    // Changed mounts show as an exceptional condition, proc_pid_mounts(5).
    std::array<pollfd, 3> events{
        {{m_wake, POLLIN, 0}, {m_mountinfo, POLLPRI, 0}, {m_devices->fd(), POLLIN, 0}}};
    for (;;) {
        ::poll(events.data(), events.size(), -1);
        if ((events[2].revents & POLLIN) != 0)
            m_devices->takeEvents();
        takeNewListeners();
        const std::vector<Plugged> now = look();
        for (Listener &listener : m_listeners)
            tell(listener, now);
    }
}

std::vector<Plugged> HotPlug::look()
{
    std::vector<Plugged> now = m_devices->adapters();
    const std::vector<Plugged> disks = udisksIn(readFromStart(m_mountinfo));
    now.insert(now.end(), disks.begin(), disks.end());
    return now;
}

void HotPlug::takeNewListeners()
{
    std::uint64_t count = 0;
    if (::read(m_wake, &count, sizeof count) != sizeof count)
        return;
    const std::lock_guard lock(m_mutex);
    std::move(m_waiting.begin(), m_waiting.end(), std::back_inserter(m_listeners));
    m_waiting.clear();
}

// What is gone first: a disk that another one has replaced on the same path.
void HotPlug::tell(Listener &listener, const std::vector<Plugged> &now)
{
    const std::vector<Plugged> before = std::exchange(listener.told, now);
    const auto call = [&](const std::vector<Plugged> &devices, auto callback) {
        for (const Plugged &device : devices) {
            const auto wanted = static_cast<PLATFORM::DEV_TYPE_T>(device.info.nType);
            if (callback != nullptr &&
                std::count(listener.types.begin(), listener.types.end(), wanted) > 0)
                callback(device.info, listener.context);
        }
    };
    call(newIn(before, now), listener.callbacks.removed);
    call(newIn(now, before), listener.callbacks.added);
}

} // namespace board

namespace PLATFORM {

int CPlatMedia::addDev(const std::vector<DEV_TYPE_T> &types, const MediaCallbacks &callbacks,
                       void *context)
{
    static board::HotPlug &hotPlug = *new board::HotPlug;
    return hotPlug.add(types, callbacks, context);
}

} // namespace PLATFORM
