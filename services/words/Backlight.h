// Brightness and darkness of the screen, by /sys/class/backlight
// (Documentation/ABI/stable/sysfs-class-backlight of Linux).
#pragma once

#include "services/words/Journal.h"

#include <string>
#include <vector>

namespace words {

class Backlight
{
public:
    // Sets every backlight to `percent` of its maximum, never to 0.
    void setBrightness(unsigned percent);

    // Turns every backlight off or on; where none can be, has the frame buffer's driver blank the
    // screen. False if that does not work either.
    bool setDark(bool dark);

private:
    Trouble m_brightness{"brightness cannot be set"};
    Trouble m_dark{"the screen cannot be darkened"};
};

} // namespace words
