#include "services/words/TouchDevice.h"

#include <cerrno>
#include <fcntl.h>

namespace words {
namespace {

constexpr int NO_SLOT = -1;

bool isMultiTouch(unsigned code)
{
    return code > ABS_MT_SLOT && code <= ABS_MT_TOOL_Y;
}

// Not the power button and not the lid: what these say goes past the screen.
bool isTouched(const libevdev *device)
{
    for (const unsigned code : {BTN_TOUCH, BTN_LEFT, KEY_ENTER}) {
        if (libevdev_has_event_code(device, EV_KEY, code) != 0)
            return true;
    }
    return false;
}

// A value that is far enough from the axis's own for the driver's filter to let both pass.
int besideValue(const input_absinfo &axis, int value)
{
    const int distance = 2 * axis.fuzz + 1;
    return value + distance <= axis.maximum ? value + distance : value - distance;
}

} // namespace

std::unique_ptr<TouchDevice> TouchDevice::open(const std::string &path, int &error)
{
    os::FileDescriptor file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    error = file.isOpen() ? 0 : errno;
    libevdev *evdev = nullptr;
    if (!file.isOpen() || libevdev_new_from_fd(file.get(), &evdev) < 0)
        return nullptr;
    std::unique_ptr<TouchDevice> device(new TouchDevice(std::move(file), evdev));
    return isTouched(evdev) ? std::move(device) : nullptr;
}

TouchDevice::TouchDevice(os::FileDescriptor file, libevdev *device)
    : m_file(std::move(file)), m_device(device)
{
    for (unsigned code = 0; code < KEY_CNT; ++code) {
        if (libevdev_get_event_value(device, EV_KEY, code) != 0)
            m_down.insert(code);
    }
}

// After an overrun libevdev tells the difference.
bool TouchDevice::read()
{
    input_event event{};
    unsigned flag = LIBEVDEV_READ_FLAG_NORMAL;
    for (;;) {
        const int result = libevdev_next_event(m_device.get(), flag, &event);
        if (result == -EAGAIN && flag == LIBEVDEV_READ_FLAG_NORMAL)
            return true;
        if (result < 0 && result != -EAGAIN && result != -EINTR)
            return false;
        flag = result == LIBEVDEV_READ_STATUS_SYNC ? LIBEVDEV_READ_FLAG_SYNC
                                                   : LIBEVDEV_READ_FLAG_NORMAL;
        if (result >= 0)
            take(event);
    }
}

void TouchDevice::take(const input_event &event)
{
    if (event.type == EV_KEY && event.value == 0)
        m_down.erase(event.code);
    if (event.type == EV_KEY && event.value == 1 && m_down.insert(event.code).second)
        m_bPressed = true;
    if (event.type == EV_ABS && m_bGrabbed)
        note(event);
}

void TouchDevice::note(const input_event &event)
{
    if (isMultiTouch(event.code) && event.code != ABS_MT_TRACKING_ID)
        m_unseen.insert({libevdev_get_current_slot(m_device.get()), event.code});
    else if (event.code < ABS_MT_SLOT)
        m_unseen.insert({NO_SLOT, event.code});
}

void TouchDevice::grab(bool on)
{
    if (on == m_bGrabbed)
        return;
    libevdev_grab(m_device.get(), on ? LIBEVDEV_GRAB : LIBEVDEV_UNGRAB);
    m_bGrabbed = on;
    if (!on)
        repeatPositions();
}

// The kernel tells a position only when it changes. The others have not seen the positions of the
// touch that was kept from them: the next one at the same place would reach them with older ones.
void TouchDevice::repeatPositions()
{
    for (const bool displaced : {true, false}) {
        for (const Axis &axis : m_unseen)
            repeat(axis, displaced);
        if (!m_unseen.empty())
            emit(EV_SYN, SYN_REPORT, 0);
    }
    m_unseen.clear();
}

void TouchDevice::repeat(const Axis &axis, bool displaced)
{
    const auto [slot, code] = axis;
    const input_absinfo *info = libevdev_get_abs_info(m_device.get(), code);
    if (info == nullptr)
        return;
    const int value = slot == NO_SLOT ? info->value
                                      : libevdev_get_slot_value(m_device.get(),
                                                                static_cast<unsigned>(slot), code);
    if (slot != NO_SLOT)
        emit(EV_ABS, ABS_MT_SLOT, slot);
    emit(EV_ABS, code, displaced ? besideValue(*info, value) : value);
}

// Whoever has the device open gets what is written to it. What cannot be written is left out.
void TouchDevice::emit(unsigned type, unsigned code, int value) const
{
    input_event event{};
    event.type = static_cast<__u16>(type);
    event.code = static_cast<__u16>(code);
    event.value = value;
    [[maybe_unused]] const ssize_t written = ::write(m_file.get(), &event, sizeof event);
}

} // namespace words
