#include "services/words/LocalTime.h"

#include <cstdlib>
#include <fstream>

namespace words {
namespace {

constexpr const char *FIRST_ZONE = "GMT-08:00"; // POSIX: eight hours ahead of UTC
constexpr const char *VARIABLE = "TZ=";
constexpr std::size_t LONGEST = 255;

// A value may lead tzset(3) to any file; this keeps it to the zones' own folder.
bool isZone(const std::string &value)
{
    constexpr const char *LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                    "0123456789+-:,./_<>";
    return !value.empty() && value.find_first_not_of(LETTERS) == std::string::npos &&
           value.front() != ':' && value.front() != '/' && value.find("..") == std::string::npos;
}

void enterZone(const std::string &zone)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread reads the environment
    ::setenv("TZ", zone.c_str(), 1);
    ::tzset();
}

std::tm brokenDown(const std::vector<Word> &words)
{
    std::tm parts{};
    parts.tm_year = words[0] - 1900;
    parts.tm_mon = words[1] - 1;
    parts.tm_mday = words[2];
    parts.tm_hour = words[3];
    parts.tm_min = words[4];
    parts.tm_sec = words[5];
    parts.tm_isdst = -1;
    return parts;
}

std::vector<Word> wordsOf(const std::tm &parts)
{
    std::vector<Word> words;
    for (const int part : {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                           parts.tm_min, parts.tm_sec})
        words.push_back(static_cast<Word>(part));
    return words;
}

bool areInRange(const std::vector<Word> &words)
{
    for (unsigned i = 0; i < CLOCK_COUNT; ++i) {
        if (!isInRange(CLOCK_FIRST + i, words[i]))
            return false;
    }
    return true;
}

} // namespace

std::string readZone(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::string content(LONGEST, '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    if (content.rfind(VARIABLE, 0) != 0)
        return FIRST_ZONE;
    const std::size_t begin = std::char_traits<char>::length(VARIABLE);
    const std::string value =
        content.substr(begin, content.find_first_of(" \t\r\n", begin) - begin);
    return isZone(value) ? value : FIRST_ZONE;
}

std::vector<Word> clockWords(std::time_t time, const std::string &zone)
{
    enterZone(zone);
    std::tm parts{};
    ::localtime_r(&time, &parts);
    return wordsOf(parts);
}

// mktime(3) makes a March out of February 30, and moves what the change to summer time leaves out.
std::optional<std::time_t> clockTime(const std::vector<Word> &words, const std::string &zone)
{
    if (words.size() != CLOCK_COUNT || !areInRange(words))
        return std::nullopt;
    enterZone(zone);
    std::tm parts = brokenDown(words);
    const std::time_t time = std::mktime(&parts);
    return wordsOf(parts) == words ? std::optional(time) : std::nullopt;
}

} // namespace words
