#include "platform/cos_time.h"

#include <cerrno>
#include <climits>
#include <ctime>

namespace COS {
namespace {

constexpr std::int64_t MS_PER_SECOND = 1000;
constexpr long NS_PER_MS = 1000000;

bool fitsInt(std::int64_t value)
{
    return value >= INT_MIN && value <= INT_MAX;
}

} // namespace

std::int64_t CosTime::GetTickCountCos()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * MS_PER_SECOND + now.tv_nsec / NS_PER_MS;
}

void CosTime::SleepCos(int ms)
{
    if (ms <= 0)
        return;
    timespec rest{};
    rest.tv_sec = ms / MS_PER_SECOND;
    rest.tv_nsec = ms % MS_PER_SECOND * NS_PER_MS;
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR)
        continue;
}

SYS_TIME_T CosTime::TimeStampToZoneTime(std::int64_t timeStamp)
{
    const auto seconds = static_cast<std::time_t>(timeStamp);
    std::tm zone{};
    ::tzset(); // localtime_r(3) need not look at TZ again
    // A panel whose time_t has 32 bits ends in 2038.
    if (std::int64_t{seconds} != timeStamp || !::localtime_r(&seconds, &zone) ||
        !fitsInt(std::int64_t{zone.tm_year} + 1900))
        return {};
    return {zone.tm_year + 1900, zone.tm_mon + 1, zone.tm_mday,
            zone.tm_hour,        zone.tm_min,     zone.tm_sec};
}

std::int64_t CosTime::TimeToTimeStamp(const SYS_TIME_T &time)
{
    const std::int64_t year = std::int64_t{time.year} - 1900;
    const std::int64_t month = std::int64_t{time.month} - 1;
    if (!fitsInt(year) || !fitsInt(month))
        return -1;
    std::tm zone{};
    zone.tm_year = static_cast<int>(year);
    zone.tm_mon = static_cast<int>(month);
    zone.tm_mday = time.day;
    zone.tm_hour = time.hour;
    zone.tm_min = time.minute;
    zone.tm_sec = time.second;
    zone.tm_isdst = -1; // the zone's rules say whether summer time holds
    return std::mktime(&zone);
}

} // namespace COS
