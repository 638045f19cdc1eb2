// A touch screen, mouse or keyboard (Documentation/input/event-codes.rst of Linux).
#pragma once

#include "platform/posix/FileDescriptor.h"
#include "services/words/Event.h"

#include <libevdev/libevdev.h>
#include <set>
#include <string>
#include <utility>

namespace words {

struct EvdevDeleter
{
    void operator()(libevdev *device) const { libevdev_free(device); }
};

class TouchDevice
{
public:
    // Null if `path` is no device that an operator touches, or cannot be opened; then `error` says
    // why, 0 for one of another kind.
    static std::unique_ptr<TouchDevice> open(const std::string &path, int &error);

    int fd() const { return m_file.get(); }

    // Takes what has come. False once the device is gone.
    bool read();

    // Whether something was pressed since the last call.
    bool takePressed() { return std::exchange(m_bPressed, false); }
    bool isDown() const { return !m_down.empty(); }

    // Keeps the events from all other readers, or no longer.
    void grab(bool on);

    // Registered with the event loop by whoever owns the device.
    Source source;

private:
    using Axis = std::pair<int, unsigned>; // slot, or -1; code

    TouchDevice(os::FileDescriptor file, libevdev *device);
    void take(const input_event &event);
    void note(const input_event &event);
    void repeatPositions();
    void repeat(const Axis &axis, bool displaced);
    void emit(unsigned type, unsigned code, int value) const;

    os::FileDescriptor m_file;
    std::unique_ptr<libevdev, EvdevDeleter> m_device;
    std::set<unsigned> m_down; // codes of the buttons and keys
    std::set<Axis> m_unseen;   // moved while nobody else could see it
    bool m_bPressed = false;
    bool m_bGrabbed = false;
};

} // namespace words
