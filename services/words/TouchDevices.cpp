#include "services/words/TouchDevices.h"

#include "platform/paths.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/epoll.h>

namespace words {
namespace {

constexpr const char *FOLDER = "/dev/input";
constexpr const char *NAME = "event"; // and a number

} // namespace

TouchDevices::TouchDevices(sd_event *event, std::function<void(bool)> touched,
                           std::function<void()> lost)
    : m_event(event), m_touched(std::move(touched)), m_lost(std::move(lost))
{
}

void TouchDevices::scan()
{
    int trouble = 0;
    std::error_code none;
    for (const auto &entry : std::filesystem::directory_iterator(panelPath(FOLDER), none)) {
        const std::string path = entry.path();
        if (entry.path().filename().string().rfind(NAME, 0) == 0 && m_devices.count(path) == 0)
            trouble = std::max(trouble, add(path));
    }
    m_trouble.set(trouble);
}

// Returns 0 or the errno; 0 also for a device that is no touch device.
int TouchDevices::add(const std::string &path)
{
    int error = 0;
    auto device = TouchDevice::open(path, error);
    if (!device)
        return error;
    sd_event_source *source = nullptr;
    if (sd_event_add_io(m_event, &source, device->fd(), EPOLLIN, onReadable, this) < 0)
        return ENOMEM;
    device->source.reset(source);
    m_devices[path] = std::move(device);
    return 0;
}

int TouchDevices::onReadable(sd_event_source *, int fd, unsigned, void *self)
{
    static_cast<TouchDevices *>(self)->read(fd);
    return 0;
}

void TouchDevices::read(int fd)
{
    const auto place = std::find_if(m_devices.begin(), m_devices.end(),
                                    [=](const auto &each) { return each.second->fd() == fd; });
    if (place == m_devices.end())
        return;
    if (place->second->read())
        return m_touched(place->second->takePressed());
    m_devices.erase(place);
    m_lost();
}

void TouchDevices::grab(bool on)
{
    for (const auto &[path, device] : m_devices)
        device->grab(on);
}

void TouchDevices::readAll()
{
    for (const auto &[path, device] : m_devices) {
        device->read(); // one that has gone says so to the loop too
        device->takePressed();
    }
}

bool TouchDevices::isDown() const
{
    return std::any_of(m_devices.begin(), m_devices.end(),
                       [](const auto &each) { return each.second->isDown(); });
}

} // namespace words
