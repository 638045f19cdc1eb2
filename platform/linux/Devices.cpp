#include "platform/linux/Devices.h"

#include "platform/linux/Journal.h"

#include <cerrno>
#include <functional>
#include <libudev.h>

namespace board {
namespace {

constexpr const char *ETHERNET = "1"; // ARPHRD_ETHER

struct EndEnumeration
{
    void operator()(udev_enumerate *list) const { udev_enumerate_unref(list); }
};
using Enumeration = std::unique_ptr<udev_enumerate, EndEnumeration>;

std::string textOf(const char *text)
{
    return text == nullptr ? std::string() : text;
}

std::string property(udev_device *device, const char *name)
{
    return textOf(udev_device_get_property_value(device, name));
}

// A DEV_TYPE_T, or 0 for what is no adapter of the board.
int kindOf(udev_device *device)
{
    const std::string type = textOf(udev_device_get_devtype(device));
    if (type == "wlan")
        return PLATFORM::DEV_WIFI;
    if (type == "wwan")
        return PLATFORM::DEV_4G;
    const bool isHardware = udev_device_get_parent(device) != nullptr;
    const bool isEthernet = textOf(udev_device_get_sysattr_value(device, "type")) == ETHERNET;
    return type.empty() && isHardware && isEthernet ? PLATFORM::DEV_ETH : 0;
}

// A whole disk or a partition that udev has looked at and found nothing on.
bool isEmptyStick(udev_device *device)
{
    const bool isDisk = textOf(udev_device_get_devtype(device)) == "disk";
    return isDisk && property(device, "ID_BUS") == "usb" &&
           property(device, "ID_FS_TYPE").empty() && property(device, "ID_PART_TABLE_TYPE").empty();
}

void tellOfEmptyStick(udev_device *device)
{
    if (textOf(udev_device_get_subsystem(device)) == "block" &&
        textOf(udev_device_get_action(device)) == "add" && isEmptyStick(device))
        journal(Severity::Warning, textOf(udev_device_get_sysname(device)) +
                                       ": a U-disk without partitions and without a file system");
}

Enumeration enumerate(udev *context, const char *subsystem)
{
    Enumeration list(udev_enumerate_new(context));
    if (list) {
        udev_enumerate_add_match_subsystem(list.get(), subsystem);
        udev_enumerate_add_match_is_initialized(list.get());
    }
    return list;
}

} // namespace

void Devices::Release::operator()(udev *context) const
{
    udev_unref(context);
}

void Devices::Release::operator()(udev_device *device) const
{
    udev_device_unref(device);
}

void Devices::Release::operator()(udev_monitor *monitor) const
{
    udev_monitor_unref(monitor);
}

Devices::Devices()
    : m_udev(udev_new()),
      m_monitor(m_udev ? udev_monitor_new_from_netlink(m_udev.get(), "udev") : nullptr)
{
    if (!m_monitor)
        return;
    for (const char *subsystem : {"net", "tty", "block"})
        udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), subsystem, nullptr);
    if (udev_monitor_enable_receiving(m_monitor.get()) < 0)
        m_monitor.reset();
}

Devices::~Devices() = default;

int Devices::fd() const
{
    return m_monitor ? udev_monitor_get_fd(m_monitor.get()) : -1;
}

// Where events were lost (ENOBUFS) the next call goes on with what is left.
void Devices::takeEvents()
{
    for (;;) {
        errno = 0;
        const std::unique_ptr<udev_device, Release> device(
            udev_monitor_receive_device(m_monitor.get()));
        if (device)
            tellOfEmptyStick(device.get());
        else if (errno != ENOBUFS)
            return;
    }
}

std::vector<Plugged> Devices::adapters() const
{
    std::vector<Plugged> found;
    if (!m_udev)
        return found;
    addNetworkDevices(found);
    if (hasModem())
        found.push_back({{PLATFORM::DEV_4G, std::string()}, "modem"});
    return found;
}

void Devices::addNetworkDevices(std::vector<Plugged> &found) const
{
    const Enumeration list = enumerate(m_udev.get(), "net");
    if (!list || udev_enumerate_scan_devices(list.get()) < 0)
        return;
    udev_list_entry *entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list.get()))
    {
        const char *path = udev_list_entry_get_name(entry);
        const std::unique_ptr<udev_device, Release> device(
            udev_device_new_from_syspath(m_udev.get(), path));
        const int kind = device ? kindOf(device.get()) : 0;
        if (kind == PLATFORM::DEV_ETH || kind == PLATFORM::DEV_WIFI)
            found.push_back({{kind, std::string()}, property(device.get(), "IFINDEX")});
    }
}

// A modem shows as a network device of its own, or as serial lines that ModemManager is told to
// take (ID_MM_DEVICE_PROCESS, or a type that its rules know a line by).
bool Devices::hasModem() const
{
    const Enumeration list = enumerate(m_udev.get(), "net");
    if (!list)
        return false;
    udev_enumerate_add_match_subsystem(list.get(), "tty");
    udev_enumerate_add_match_property(list.get(), "DEVTYPE", "wwan");
    udev_enumerate_add_match_property(list.get(), "ID_MM_DEVICE_PROCESS", "1");
    udev_enumerate_add_match_property(list.get(), "ID_MM_PORT_TYPE_AT_PRIMARY", "1");
    return udev_enumerate_scan_devices(list.get()) >= 0 &&
           udev_enumerate_get_list_entry(list.get()) != nullptr;
}

} // namespace board
