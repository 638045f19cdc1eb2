// The arithmetic of the clock's fields, and the runtime's clock. GUI thread.
#pragma once

#include "platform/cos_time.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>

enum ClockField {
    CLOCK_YEAR,
    CLOCK_MONTH,
    CLOCK_DAY,
    CLOCK_HOUR,
    CLOCK_MINUTE,
    CLOCK_SECOND,
    CLOCK_FIELDS,
};

// The texts of the six fields.
using ClockTexts = std::array<QString, CLOCK_FIELDS>;

// The year as four digits, the others as two.
ClockTexts clockTexts(const COS::SYS_TIME_T &time);
COS::SYS_TIME_T clockTime(const ClockTexts &texts);

struct ClockRange
{
    int min;
    int max;
};

// What the keyboard takes for a field while the fields show `texts`. The limit of the day goes by
// the month as it is displayed ("02"). A year divisible by 4 is a leap year: right from 2000 to
// 2037.
ClockRange clockRange(ClockField field, const ClockTexts &texts);

// The day that is left after an entry into the year, with the month as displayed ("02"), or into
// the month, as typed ("2"): the text of the day, or of the last day that there is.
QString dayAfterYear(const ClockTexts &texts);
QString dayAfterMonth(const ClockTexts &texts);

// Sets `offset` to the seconds from the panel's clock to the time that the fields show; untouched
// if the panel's clock cannot be read.
void measureOffset(const ClockTexts &texts, std::int64_t &offset);

// The six values that Save writes. The seconds are the minutes' value; this is intended.
QStringList clockValues(const ClockTexts &texts);

// Sets the runtime's clock: year, month, day, hour, minute, second. Returns 0; -2 if there are not
// six values, -3 if the runtime refuses.
[[nodiscard]] int writeClock(const QStringList &values);
