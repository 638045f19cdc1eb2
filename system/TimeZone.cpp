#include "system/TimeZone.h"

#include "platform/cos_file.h"
#include "platform/cos_time.h"
#include "platform/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <system_error>
#include <unistd.h>

const std::array<TimeZoneRow, TIME_ZONES> TIME_ZONE_ROWS{{
    {"UTC+08:00 Beijing", "GMT-08:00"},
    {"UTC-12:00 International Date Line", "GMT+12:00"},
    {"UTC-11:00 Midway Island", "GMT+11:00"},
    {"UTC-10:00 Hawaii", "GMT+10:00"},
    {"UTC-09:30 Marquesas Islands", "GMT+09:30"},
    {"UTC-09:00 Alaska", "GMT+09:00"},
    {"UTC-08:00 Tijuana", "GMT+08:00"},
    {"UTC-07:00 Chihuahua", "GMT+07:00"},
    {"UTC-06:00 Easter Island", "GMT+06:00"},
    {"UTC-06:00 Mexico City", "GMT+06:00"},
    {"UTC-05:00 Bogota", "GMT+05:00"},
    {"UTC-04:00 Caracas", "GMT+04:00"},
    {"UTC-03:30 Newfoundland", "GMT+03:30"},
    {"UTC-03:00 Araguaina", "GMT+03:00"},
    {"UTC-03:00 Brasilia", "GMT+02:00"}, // not what its label says; this is intended
    {"UTC-02:00 Mid-Atlantic", "GMT+02:00"},
    {"UTC-01:00 Azores", "GMT+01:00"},
    {"UTC+00:00 London", "GMT-00:00"},
    {"UTC+01:00 Belgrade", "GMT-01:00"},
    {"UTC+02:00 Istanbul", "GMT-02:00"},
    {"UTC+03:00 Baghdad", "GMT-03:00"},
    {"UTC+04:00 Abu Dhabi", "GMT-04:00"},
    {"UTC+04:30 Kabul", "GMT-04:30"},
    {"UTC+05:00 Karachi", "GMT-05:00"},
    {"UTC+05:30 New Delhi", "GMT-05:30"},
    {"UTC+05:45 Kathmandu", "GMT-05:45"},
    {"UTC+06:00 Dhaka", "GMT-06:00"},
    {"UTC+06:30 Rangoon", "GMT-06:30"},
    {"UTC+07:00 Bangkok", "GMT-07:00"},
    {"UTC+09:00 Seoul", "GMT-09:00"},
    {"UTC+09:30 Darwin", "GMT-09:30"},
    {"UTC+09:30 Adelaide", "GMT-09:30"},
    {"UTC+10:00 Sydney", "GMT-10:00"},
    {"UTC+11:00 Solomon Is.", "GMT-11:00"},
    {"UTC+12:00 Auckland", "GMT-12:00"},
    {"UTC+12:00 Wellington", "GMT-12:00"},
    {"UTC+12:00 Chatham Islands", "GMT-12:00"},
    {"UTC+13:00 Nuku'alofa", "GMT-13:00"},
    {"UTC+14:00 Line Is.", "GMT-14:00"},
}};

namespace {

constexpr const char *ZONE_DIRECTORY = "/mnt/data/etc/tz";
constexpr const char *ZONE_NAME = "tz.conf";
constexpr std::size_t LONGEST_CONTENT = 255; // bytes of the file that are read

// The environment's string once makeRoomForTimeZone() has put it there. The bytes behind the value
// are 0, so that other threads find its end while it is overwritten.
constexpr std::size_t NAME_LENGTH = 3;
std::array<char, 256> zoneVariable{'T', 'Z', '='};

std::vector<std::string> zoneValues()
{
    std::vector<std::string> values;
    values.reserve(TIME_ZONES);
    for (const TimeZoneRow &row : TIME_ZONE_ROWS)
        values.emplace_back(row.value);
    return values;
}

std::string zonePath()
{
    return panelPath(ZONE_DIRECTORY) + "/" + ZONE_NAME;
}

struct FileCloser
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

void tellOfFailure()
{
    const std::string why = std::generic_category().message(errno);
    std::fprintf(stderr, "sysset: the time zone is not kept: %s\n", why.c_str());
}

// Null, and the reason on standard output, if it cannot be opened.
File openZoneFile(const char *mode)
{
    File file(std::fopen(zonePath().c_str(), mode));
    if (!file) {
        std::printf("error = %d\n", errno);
        if (*mode == 'w')
            tellOfFailure();
    }
    return file;
}

// Synced, since panels are switched off by their main switch.
void writeContent(std::FILE *file, const std::string &content)
{
    std::fwrite(content.data(), 1, content.size(), file);
    if (std::fflush(file) != 0 || fsync(fileno(file)) != 0)
        tellOfFailure();
}

char *environmentZone()
{
    return std::getenv("TZ"); // NOLINT(concurrency-mt-unsafe): nobody replaces a variable
}

std::string makeZoneFile()
{
    COS::CosDir::MakeDir(panelPath(ZONE_DIRECTORY));
    const File file = openZoneFile("w+");
    if (!file)
        return {};
    const char *zone = environmentZone();
    const std::string content = std::string("TZ=") + (zone == nullptr ? "" : zone);
    std::printf("--------------[%s]\n", content.c_str());
    writeContent(file.get(), content);
    return content.substr(0, LONGEST_CONTENT);
}

std::string readZoneFile()
{
    const File file = openZoneFile("r");
    if (!file)
        return {};
    std::array<char, LONGEST_CONTENT> content{};
    return {content.data(), std::fread(content.data(), 1, content.size(), file.get())};
}

// How long a value the environment's string can hold.
std::size_t roomOf(const char *value)
{
    return value == &zoneVariable[NAME_LENGTH] ? zoneVariable.size() - NAME_LENGTH - 1
                                               : std::strlen(value);
}

// Whether the process has a TZ, and it took the value.
bool overwriteZone(const std::string &value)
{
    char *zone = environmentZone();
    if (zone == nullptr) {
        std::printf("get TZ env err [%d]\n", errno);
        return false;
    }
    if (roomOf(zone) < value.size()) {
        std::printf("no room for TZ [%s]\n", value.c_str());
        return false;
    }
    std::memcpy(zone, value.c_str(), value.size() + 1);
    return true;
}

void keepTimeZone(std::FILE *file, int index)
{
    writeContent(file, "TZ=" + g_vecGmt.at(static_cast<std::size_t>(index)));
}

} // namespace

const std::vector<std::string> g_vecGmt = zoneValues();

int loadTimeZone()
{
    const std::string content =
        COS::CosFile::ExistFile(zonePath()) ? readZoneFile() : makeZoneFile();
    std::array<char, LONGEST_CONTENT + 1> value{};
    std::sscanf(content.c_str(), "TZ=%255s", value.data());
    const auto row = std::find(g_vecGmt.begin(), g_vecGmt.end(), value.data());
    return row == g_vecGmt.end() ? 0 : static_cast<int>(row - g_vecGmt.begin());
}

void applyTimeZone(int index, std::int64_t offset)
{
    if (const File file = openZoneFile("w+"); file && index >= 0)
        keepTimeZone(file.get(), index);
    if (index < 0 || !overwriteZone(g_vecGmt.at(static_cast<std::size_t>(index))))
        return;
    tzset();
    const std::int64_t now = COS::CosTime::GetTimeStamp() + offset;
    COS::CosTime::SetSysLocalTime(COS::CosTime::TimeStampToZoneTime(now));
}

void makeRoomForTimeZone()
{
    const char *zone = environmentZone();
    char *value = &zoneVariable[NAME_LENGTH];
    if (zone == nullptr || zone == value || std::strlen(zone) > roomOf(value))
        return; // one that is too long for the variable has room enough itself
    std::memcpy(value, zone, std::strlen(zone) + 1);
    putenv(zoneVariable.data()); // NOLINT(concurrency-mt-unsafe): no other threads yet
}
