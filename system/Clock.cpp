#include "system/Clock.h"

#include "system/RuntimeWord.h"

#include <algorithm>

namespace {

constexpr unsigned int CLOCK_ADDRESS = 28;
constexpr int WRONG_COUNT = -2;
constexpr int REFUSED = -3;

// Digits of a month's text at least.
constexpr int SHOWN_WIDTH = 2;
constexpr int TYPED_WIDTH = 1;

QString padded(int number, int width)
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

bool isLeapYear(const QString &year)
{
    return year.toInt() % 4 == 0;
}

int lastOfFebruary(const QString &year)
{
    return isLeapYear(year) ? 29 : 28;
}

// Of the month whose number has `width` digits at least; a text of another form counts as a month
// of 30 days.
int lastDay(const ClockTexts &texts, int width)
{
    const QString &month = texts[CLOCK_MONTH];
    for (const int longMonth : {1, 3, 5, 7, 8, 10, 12}) {
        if (month == padded(longMonth, width))
            return 31;
    }
    return month == padded(2, width) ? lastOfFebruary(texts[CLOCK_YEAR]) : 30;
}

QString atMost(const QString &day, int last)
{
    return day.toInt() > last ? QString::number(last) : day;
}

} // namespace

ClockTexts clockTexts(const COS::SYS_TIME_T &time)
{
    return {padded(time.year, 4), padded(time.month, 2),  padded(time.day, 2),
            padded(time.hour, 2), padded(time.minute, 2), padded(time.second, 2)};
}

COS::SYS_TIME_T clockTime(const ClockTexts &texts)
{
    return {texts[CLOCK_YEAR].toInt(), texts[CLOCK_MONTH].toInt(),  texts[CLOCK_DAY].toInt(),
            texts[CLOCK_HOUR].toInt(), texts[CLOCK_MINUTE].toInt(), texts[CLOCK_SECOND].toInt()};
}

ClockRange clockRange(ClockField field, const ClockTexts &texts)
{
    switch (field) {
    case CLOCK_YEAR:
        return {2000, 2037};
    case CLOCK_MONTH:
        return {1, 12};
    case CLOCK_DAY:
        return {1, lastDay(texts, SHOWN_WIDTH)};
    case CLOCK_HOUR:
        return {0, 23};
    default:
        return {0, 59};
    }
}

QString dayAfterYear(const ClockTexts &texts)
{
    const bool shortFebruary =
        texts[CLOCK_MONTH] == QLatin1String("02") && !isLeapYear(texts[CLOCK_YEAR]);
    return shortFebruary ? atMost(texts[CLOCK_DAY], 28) : texts[CLOCK_DAY];
}

QString dayAfterMonth(const ClockTexts &texts)
{
    return atMost(texts[CLOCK_DAY], lastDay(texts, TYPED_WIDTH));
}

void measureOffset(const ClockTexts &texts, std::int64_t &offset)
{
    COS::SYS_TIME_T now;
    if (COS::CosTime::GetSysLocalTime(now) < 0)
        return;
    offset = COS::CosTime::TimeToTimeStamp(clockTime(texts)) - COS::CosTime::TimeToTimeStamp(now);
}

QStringList clockValues(const ClockTexts &texts)
{
    return {texts[CLOCK_YEAR], texts[CLOCK_MONTH],  texts[CLOCK_DAY],
            texts[CLOCK_HOUR], texts[CLOCK_MINUTE], texts[CLOCK_MINUTE]};
}

int writeClock(const QStringList &values)
{
    std::array<unsigned short, CLOCK_FIELDS> words{};
    if (values.size() != CLOCK_FIELDS)
        return WRONG_COUNT;
    std::transform(values.begin(), values.end(), words.begin(),
                   [](const QString &value) { return value.toUShort(); });
    return writeWords(CLOCK_ADDRESS, words.data(), CLOCK_FIELDS) == 0 ? 0 : REFUSED;
}
