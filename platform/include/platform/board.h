// Board services: display, buzzer, processor, model, hot-plug.
#pragma once

#include <string>
#include <vector>

namespace PLATFORM {

// The panel's display. All functions: any thread.
class CPlatLcd
{
public:
    // Opens the display. Returns 0; negative on failure.
    static int open();

    // The size in pixels, and in `depth` the bits a pixel. Returns 0; negative on failure, with
    // the arguments untouched. Cheap enough to be asked each time.
    static int getResolution(int &width, int &height, int &depth);

    // The backlight's brightness in percent, 1 to 100. Returns 0; negative on failure.
    static int setBrightness(int percent);
};

// The buzzer. Tones play in the background: open() asks for a key click, and runBeep(), called
// every 50 ms by the program's buzzer task, starts and ends them. All functions: any thread.
class CPlatBuzzer
{
public:
    // Asks for one key click of the set length and tone. Returns at once. Returns 0; negative on
    // failure. Silent while the buzzer is disabled.
    static int open();

    // Sets everything at once: `enabled` 1 or 0, the tone 1 to 5, the click's length in
    // milliseconds, 0 to 1000. Returns 0; negative on failure.
    static int init(int enabled, unsigned short pwmType, unsigned short beepTime);

    // 1 on, 0 off. Returns 0; negative on failure.
    static int setEnable(int enabled);
    // 1 if enabled, 0 if not; negative on failure.
    static int getEnable();
    // Length of a click in milliseconds, 0 to 1000. Returns 0; negative on failure.
    static int setBeepTime(unsigned short milliseconds);
    // Tone, 1 to 5. Returns 0; negative on failure.
    static int setPwmType(unsigned short tone);

    // One step of the buzzer's work. Never blocks. Returns 0; negative on failure.
    static int runBeep();
};

class CPlatCpu
{
public:
    // Whether the board can reset itself in hardware: not 0 if so. Any thread.
    static int enableReboot();

    // The processor's identifier as text. Returns 0; negative on failure. Any thread.
    static int getCpuId(std::string &id);
};

class CPlatBoard
{
public:
    // The board's model, as firmware files name it. Returns 0 or more; negative on failure. Any
    // thread.
    static int getKVxxx(std::string &model);
};

// Kinds of devices that are plugged in and out.
enum DEV_TYPE_T {
    DEV_UDISK = 201,
    DEV_ETH = 301,
    DEV_WIFI = 302,
    DEV_4G = 303,
};

struct tagDEV_INFO_T
{
    int nType = 0;          // a DEV_TYPE_T, or a code that this program does not know
    std::string sMountPath; // bytes as the system mounts it; empty where nothing is mounted
};

// What addDev() calls on the board's media thread, one call at a time. They may block it: the
// next event waits. The result is ignored; 0 by convention.
struct MediaCallbacks
{
    int (*added)(const tagDEV_INFO_T &info, void *context) = nullptr;
    int (*removed)(const tagDEV_INFO_T &info, void *context) = nullptr;
};

class CPlatMedia
{
public:
    // Reports devices of the kinds `types` from now on, first those that are there already.
    // `context` is handed to the callbacks. Returns 0; negative on failure. Any thread.
    static int addDev(const std::vector<DEV_TYPE_T> &types, const MediaCallbacks &callbacks,
                      void *context);
};

} // namespace PLATFORM

// A tone of `milliseconds` at once, in the background, whatever the buzzer's settings. Returns 0;
// negative on failure. Any thread.
int Beep(int milliseconds);

// Restarts the board: 1 by its hardware reset, 0 by the operating system. Returns, if at all, 0;
// negative on failure. Any thread.
int my_reboot(int hardware);

// Makes the system partition writable (`mode` 1) or read-only (0), whatever it was before.
// `partition` names another partition than the system's; empty for the system's. The program counts
// its jobs itself: 0 only comes when none is left that writes. Returns 0; negative on failure. Any
// thread.
int remountPartion(int mode, const std::string &partition);
