#include "platform/linux/Backlight.h"

#include "platform/linux/Journal.h"
#include "platform/linux/PanelConf.h"
#include "platform/paths.h"
#include "platform/posix/SmallFile.h"

#include <algorithm>
#include <string>

namespace board {
namespace {

constexpr int PERCENT = 100;

std::string backlights()
{
    return panelPath("/sys/class/backlight/");
}

int rankOf(const std::string &name)
{
    const std::string kind = readFact(backlights() + name + "/type");
    return kind == "firmware" ? 0 : kind == "platform" ? 1 : 2;
}

// The folder of the backlight with a slash behind it; empty if there is none.
std::string findBacklight()
{
    std::vector<std::string> names = namesIn(backlights());
    const std::string &wanted = panelConf().backlight;
    if (!wanted.empty())
        return std::find(names.begin(), names.end(), wanted) == names.end()
                   ? std::string()
                   : backlights() + wanted + "/";
    const auto best =
        std::min_element(names.begin(), names.end(), [](const auto &left, const auto &right) {
            return rankOf(left) < rankOf(right);
        });
    return best == names.end() ? std::string() : backlights() + *best + "/";
}

bool write(int percent)
{
    const std::string folder = findBacklight();
    const int most = numberIn(readFact(folder + "max_brightness")).value_or(0);
    return !folder.empty() && most > 0 &&
           writeFile(folder + "brightness", std::to_string(backlightValue(percent, most)));
}

} // namespace

int backlightValue(int percent, int maxBrightness)
{
    const long long hundredfold = static_cast<long long>(percent) * maxBrightness;
    return std::max(1, static_cast<int>((hundredfold + PERCENT / 2) / PERCENT));
}

bool setBacklight(int percent)
{
    if (percent < 1 || percent > PERCENT)
        return false;
    static Fault &fault = *new Fault;
    const bool done = write(percent);
    if (done)
        fault.mended("the backlight takes its brightness");
    else
        fault.tell("no backlight takes the brightness: see /sys/class/backlight");
    return done;
}

} // namespace board
