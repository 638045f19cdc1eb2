// Devices as udev knows them (udev(7)). One thread at a time.
#pragma once

#include "platform/board.h"

#include <memory>
#include <string>
#include <vector>

struct udev;
struct udev_device;
struct udev_monitor;

namespace board {

// Something that is plugged in: what `info` says to the program, and a key that no other one has.
struct Plugged
{
    PLATFORM::tagDEV_INFO_T info;
    std::string key;
};

class Devices
{
public:
    Devices();
    ~Devices();
    Devices(const Devices &) = delete;
    Devices &operator=(const Devices &) = delete;

    // What poll(2) waits for to learn that a device has come or gone; -1 where there is no udev.
    int fd() const;
    // Takes the events that have come; tells the journal of a disk on USB that holds no file
    // system.
    void takeEvents();
    // The network adapters that are there: Ethernet and Wi-Fi devices of the board one by one, all
    // nodes of modems as one.
    std::vector<Plugged> adapters() const;

private:
    struct Release
    {
        void operator()(udev *context) const;
        void operator()(udev_device *device) const;
        void operator()(udev_monitor *monitor) const;
    };

    void addNetworkDevices(std::vector<Plugged> &found) const;
    bool hasModem() const;

    std::unique_ptr<udev, Release> m_udev;
    std::unique_ptr<udev_monitor, Release> m_monitor;
};

} // namespace board
