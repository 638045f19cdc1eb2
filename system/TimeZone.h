// The 39 time zones, the file that keeps the chosen one, and the process's TZ. GUI thread.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct TimeZoneRow
{
    const char *label; // as the list shows it
    // As the environment variable TZ takes it; the sign is the reverse of the label's (tzset(3)).
    const char *value;
};

constexpr std::size_t TIME_ZONES = 39;

// In the order of the list. The first is the default, out of order.
extern const std::array<TimeZoneRow, TIME_ZONES> TIME_ZONE_ROWS;

// The values alone, in the same order.
extern const std::vector<std::string> g_vecGmt;

// The row that the zone file names, 0 if it names none. A missing file is made from the process's
// TZ; one that cannot be opened is reported on standard output.
int loadTimeZone();

// Keeps row `index` in the zone file, makes it the process's zone, and sets the panel's clock to
// the present time plus `offset` seconds in that zone. A file that cannot be opened, or a TZ that
// cannot be set, is reported on standard output. A negative index only empties the file; one
// beyond the table throws std::out_of_range.
void applyTimeZone(int index, std::int64_t offset);

// Puts a TZ that the process has into a variable with room for every value of the table, so that
// applyTimeZone() can overwrite it in place. To be called before there are other threads: from
// then on nobody may add to the environment or replace anything in it.
void makeRoomForTimeZone();
