#include "platform/linux/Mounts.h"

#include <algorithm>
#include <sstream>

namespace board {
namespace {

constexpr int OCTAL_DIGITS = 3;

bool isOctal(char c)
{
    return c >= '0' && c <= '7';
}

// The kernel writes blank, tab, line end and backslash as a backslash and three octal digits.
std::string unescaped(const std::string &text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + OCTAL_DIGITS < text.size() &&
                            std::all_of(&text[i + 1], &text[i + 1] + OCTAL_DIGITS, isOctal);
        if (!escape) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>(std::stoi(text.substr(i + 1, OCTAL_DIGITS), nullptr, 8));
        i += OCTAL_DIGITS;
    }
    return plain;
}

bool isBelow(const std::string &folder, const std::string &path)
{
    return path.size() > folder.size() + 1 && path.compare(0, folder.size(), folder) == 0 &&
           path[folder.size()] == '/';
}

} // namespace

std::vector<Mount> mountsBelow(const std::string &folder, const std::string &mountinfo)
{
    std::vector<Mount> mounts;
    std::istringstream lines(mountinfo);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        Mount mount;
        std::string parent;
        std::string device;
        std::string root;
        if (!(fields >> mount.id >> parent >> device >> root >> mount.path))
            continue;
        mount.path = unescaped(mount.path);
        if (!isBelow(folder, mount.path))
            continue;
        const auto same = [&](const Mount &other) { return other.path == mount.path; };
        mounts.erase(std::remove_if(mounts.begin(), mounts.end(), same), mounts.end());
        mounts.push_back(mount);
    }
    return mounts;
}

} // namespace board
