// Operating-system layer: ticks, sleep, and the panel's clock.
#pragma once

#include <cstdint>

namespace COS {

// A point of the panel's calendar, as a person writes it.
struct SYS_TIME_T
{
    int year = 1970;
    int month = 1; // 1 to 12
    int day = 1;   // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// All functions: any thread.
class CosTime
{
public:
    // Milliseconds since an arbitrary moment, never going back (CLOCK_MONOTONIC).
    static std::int64_t GetTickCountCos();

    // Returns after at least `ms` milliseconds; at once if ms <= 0.
    static void SleepCos(int ms);

    // The panel's clock in seconds since 1970-01-01 00:00:00 UTC.
    static std::int64_t GetTimeStamp();

    // `timeStamp` (as GetTimeStamp) in the process's time zone, as TZ names it at this moment
    // (tzset(3)). 1970-01-01 00:00:00 if the year cannot be represented. Nobody may change the
    // environment meanwhile.
    static SYS_TIME_T TimeStampToZoneTime(std::int64_t timeStamp);

    // The reverse; fields out of their range carry over, as mktime(3) does it, and the zone's rules
    // say whether summer time holds. Returns -1 if the result cannot be represented. Nobody may
    // change the environment meanwhile.
    static std::int64_t TimeToTimeStamp(const SYS_TIME_T &time);

    // The panel's clock in the process's time zone. Returns 0; -1 on failure (time untouched).
    static int GetSysLocalTime(SYS_TIME_T &time);

    // Sets the panel's clock, `time` being in the process's time zone. Returns 0; -1 if the
    // system refuses or the time cannot be represented.
    static int SetSysLocalTime(const SYS_TIME_T &time);
};

} // namespace COS
