#include "platform/posix/Facts.h"

#include "platform/paths.h"
#include "platform/posix/SmallFile.h"

#include <algorithm>
#include <initializer_list>
#include <sstream>

namespace board {
namespace {

constexpr const char *ETHERNET = "1"; // ARPHRD_ETHER

// What DMI gives where nobody has filled it in.
bool isFilled(const std::string &fact)
{
    const auto says = [&](const char *text) { return fact == text; };
    const bool zeros = fact.find_first_not_of("0-") == std::string::npos;
    return !zeros && !says("Not Specified") && !says("Not Settable") && !says("None") &&
           !says("To Be Filled By O.E.M.") && !says("To be filled by O.E.M.") &&
           !says("Default string") && !says("System Product Name") && !says("System Serial Number");
}

std::string firstOf(std::initializer_list<const char *> files)
{
    for (const char *file : files) {
        std::string fact = readFact(panelPath(file));
        if (isFilled(fact))
            return fact;
    }
    return {};
}

// The line "Serial : 00000000abcdef01" that ARM kernels give.
std::string cpuinfoSerial()
{
    std::istringstream lines(readFile(panelPath("/proc/cpuinfo")).value_or(std::string()));
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t colon = line.find(':');
        if (colon != std::string::npos && trimmed(line.substr(0, colon)) == "Serial")
            return trimmed(line.substr(colon + 1));
    }
    return {};
}

// Of the board itself, neither a bridge nor wireless.
bool isBoardEthernet(const std::string &folder)
{
    const std::vector<std::string> names = namesIn(folder);
    const auto has = [&](const char *name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    return has("device") && !has("wireless") && !has("phy80211") &&
           readFact(folder + "/type") == ETHERNET;
}

} // namespace

std::string boardModel()
{
    return firstOf({"/proc/device-tree/model", "/sys/class/dmi/id/product_name"});
}

std::string boardSerial()
{
    return firstOf({"/proc/device-tree/serial-number", "/sys/class/dmi/id/product_serial"});
}

std::string processorId()
{
    std::string id =
        firstOf({"/sys/devices/soc0/serial_number", "/proc/device-tree/serial-number"});
    if (!id.empty())
        return id;
    const std::string serial = cpuinfoSerial();
    return isFilled(serial) ? serial : firstOf({"/sys/class/dmi/id/product_uuid"});
}

std::string ethernetMac()
{
    const std::string devices = panelPath("/sys/class/net/");
    for (const std::string &name : namesIn(devices)) {
        if (isBoardEthernet(devices + name))
            return readFact(devices + name + "/address");
    }
    return {};
}

} // namespace board
