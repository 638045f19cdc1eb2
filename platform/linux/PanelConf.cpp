#include "platform/linux/PanelConf.h"

#include "platform/linux/Journal.h"
#include "platform/paths.h"
#include "platform/posix/SmallFile.h"

#include <algorithm>
#include <ini.h>
#include <optional>
#include <sstream>
#include <vector>

namespace board {
namespace {

constexpr const char *FILE_NAME = "/etc/sysset/panel.conf";
constexpr std::size_t LONGEST_TEXT = 64;
constexpr int LEAST_SIDE = 200; // pixels
constexpr int LARGEST_SIDE = 8192;
constexpr int LOWEST_TONE = 20; // hertz, what a person hears
constexpr int HIGHEST_TONE = 20000;
constexpr int LARGEST_PORT = 65535;

std::optional<int> within(const std::string &text, int least, int most)
{
    const std::optional<int> number = numberIn(trimmed(text));
    return number && *number >= least && *number <= most ? number : std::nullopt;
}

bool takeText(std::string &field, const std::string &value)
{
    const bool isPlain = std::none_of(value.begin(), value.end(),
                                      [](unsigned char c) { return c < ' ' || c == 0x7f; });
    if (!isPlain || value.size() > LONGEST_TEXT)
        return false;
    field = value;
    return true;
}

bool takeSwitch(bool &field, const std::string &value)
{
    if (value != "yes" && value != "no")
        return false;
    field = value == "yes";
    return true;
}

bool takeSize(PanelConf &conf, const std::string &value)
{
    const std::size_t cross = value.find('x');
    if (cross == std::string::npos)
        return false;
    const auto width = within(value.substr(0, cross), LEAST_SIDE, LARGEST_SIDE);
    const auto height = within(value.substr(cross + 1), LEAST_SIDE, LARGEST_SIDE);
    if (!width || !height)
        return false;
    conf.width = *width;
    conf.height = *height;
    return true;
}

// Five numbers with blanks between them.
bool takeTones(PanelConf &conf, const std::string &value)
{
    std::istringstream words(value);
    std::array<int, TONES> tones{};
    std::string word;
    for (int &tone : tones) {
        words >> word;
        const auto hertz = within(word, LOWEST_TONE, HIGHEST_TONE);
        if (!words || !hertz)
            return false;
        tone = *hertz;
    }
    if (words >> word)
        return false;
    conf.tones = tones;
    return true;
}

bool takePort(PanelConf &conf, const std::string &value)
{
    const auto port = within(value, 1, LARGEST_PORT);
    conf.wordsPort = port.value_or(conf.wordsPort);
    return port.has_value();
}

// A name of a folder in /sys/class/backlight, and no way out of there.
bool takeBacklight(PanelConf &conf, const std::string &value)
{
    return value.find('/') == std::string::npos && value.front() != '.' &&
           takeText(conf.backlight, value);
}

struct Key
{
    const char *section;
    const char *name;
    bool (*take)(PanelConf &conf, const std::string &value);
};

constexpr Key KEYS[] = {
    {"display", "size", takeSize},
    {"display", "backlight", takeBacklight},
    {"buzzer", "tones", takeTones},
    {"machine", "model", [](PanelConf &c, const std::string &v) { return takeText(c.model, v); }},
    {"machine", "board", [](PanelConf &c, const std::string &v) { return takeText(c.board, v); }},
    {"machine", "serial", [](PanelConf &c, const std::string &v) { return takeText(c.serial, v); }},
    {"machine", "mac", [](PanelConf &c, const std::string &v) { return takeText(c.mac, v); }},
    {"machine", "product",
     [](PanelConf &c, const std::string &v) { return takeText(c.product, v); }},
    {"machine", "device-id",
     [](PanelConf &c, const std::string &v) { return takeText(c.deviceId, v); }},
    {"machine", "remote",
     [](PanelConf &c, const std::string &v) { return takeSwitch(c.remote, v); }},
    {"restart", "hardware-reset",
     [](PanelConf &c, const std::string &v) { return takeSwitch(c.hardwareReset, v); }},
    {"words", "port", takePort},
    {"words", "clock", [](PanelConf &, const std::string &) { return true; }}, // the service's own
};

// Null if there is no such key.
const Key *findKey(const std::string &section, const std::string &name)
{
    const auto *key = std::find_if(std::begin(KEYS), std::end(KEYS), [&](const Key &each) {
        return section == each.section && name == each.name;
    });
    return key == std::end(KEYS) ? nullptr : key;
}

struct Reading
{
    PanelConf conf;
    std::vector<std::string> faults;
};

// Takes one line over; ini_handler.
int onValue(void *reading, const char *section, const char *name, const char *value)
{
    auto &[conf, faults] = *static_cast<Reading *>(reading);
    const Key *key = findKey(section, name);
    const std::string place = "[" + std::string(section) + "] " + name;
    if (!key)
        faults.push_back("no such key: " + place.substr(0, LONGEST_TEXT));
    else if (*value != '\0' && !key->take(conf, value))
        faults.push_back("no value for " + place);
    return 1; // goes on
}

std::string describe(const std::vector<std::string> &faults)
{
    if (faults.empty())
        return {};
    const std::string more = std::to_string(faults.size() - 1);
    return faults.front() + (faults.size() > 1 ? ", and " + more + " more" : "");
}

PanelConf loadPanelConf()
{
    const std::string path = panelPath(FILE_NAME);
    const std::optional<std::string> text = readFile(path);
    if (!text) {
        journal(Severity::Warning, path + " cannot be read: the defaults hold");
        return {};
    }
    std::string fault;
    PanelConf conf = parsePanelConf(*text, fault);
    if (!fault.empty())
        journal(Severity::Warning, path + ": " + fault + ": the defaults hold there");
    return conf;
}

} // namespace

PanelConf parsePanelConf(const std::string &text, std::string &fault)
{
    if (text.find('\0') != std::string::npos) {
        fault = "no text";
        return {};
    }
    Reading reading;
    const int line = ini_parse_string(text.c_str(), onValue, &reading);
    if (line != 0)
        reading.faults.push_back("line " + std::to_string(line) +
                                 " is no [section] and no key=value");
    fault = describe(reading.faults);
    return reading.conf;
}

const PanelConf &panelConf()
{
    static const PanelConf &conf = *new PanelConf(loadPanelConf());
    return conf;
}

} // namespace board
