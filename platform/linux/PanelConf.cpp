#include "platform/linux/PanelConf.h"

#include "platform/linux/Journal.h"
#include "platform/linux/SmallFile.h"
#include "platform/paths.h"

#include <algorithm>
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
};

// The file's state while its lines are read.
struct Reader
{
    PanelConf conf;
    std::string section;

    // Returns what is wrong with the line; empty if nothing is.
    std::string take(const std::string &line)
    {
        if (line.empty() || line.front() == '#' || line.front() == ';')
            return {};
        if (line.front() == '[' && line.back() == ']') {
            section = trimmed(line.substr(1, line.size() - 2));
            return {};
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            return "neither [section] nor key=value";
        return takeKey(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }

    std::string takeKey(const std::string &name, const std::string &value)
    {
        for (const Key &key : KEYS) {
            if (section == key.section && name == key.name)
                return value.empty() || key.take(conf, value) ? "" : "no value for " + name;
        }
        return "no such key here: " + name.substr(0, LONGEST_TEXT);
    }
};

std::string describe(const std::vector<std::string> &faults)
{
    if (faults.empty())
        return {};
    const std::string more = std::to_string(faults.size() - 1);
    return faults.front() + (faults.size() > 1 ? ", and " + more + " more lines" : "");
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
        journal(Severity::Warning, path + ", " + fault + ": the defaults hold there");
    return conf;
}

} // namespace

PanelConf parsePanelConf(const std::string &text, std::string &fault)
{
    Reader reader;
    std::vector<std::string> faults;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const std::string wrong = reader.take(trimmed(line));
        if (!wrong.empty())
            faults.push_back("line " + std::to_string(number) + ": " + wrong);
    }
    fault = describe(faults);
    return reader.conf;
}

const PanelConf &panelConf()
{
    static const PanelConf &conf = *new PanelConf(loadPanelConf());
    return conf;
}

} // namespace board
