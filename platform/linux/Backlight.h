// The display's backlight in /sys/class/backlight (kernel, Documentation/ABI/stable/
// sysfs-class-backlight).
#pragma once

namespace board {

// The value of a device of that `max_brightness` for `percent`, 1 to 100: rounded, and never 0,
// which is dark on many panels.
int backlightValue(int percent, int maxBrightness);

// Sets the backlight that panel.conf names, or the first of the best kind: one that the firmware
// drives before one of the platform before a raw one. False if `percent` is out of range or no
// backlight takes it; that is told to the journal once. Any thread.
bool setBacklight(int percent);

} // namespace board
