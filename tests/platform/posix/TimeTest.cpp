#include "platform/cos_time.h"
#include "tests/support/Rows.h"

#include <cstdint>
#include <cstdio>

using COS::CosTime;
using COS::SYS_TIME_T;

namespace {

QString text(const SYS_TIME_T &time)
{
    return QString::asprintf("%d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day,
                             time.hour, time.minute, time.second);
}

} // namespace

class TimeTest : public QObject
{
    Q_OBJECT

private slots:
    // zone | wall clock | its stamp, -1 for none | what the stamp stands for, if that is another.
    // tzset(3): rules of the zone in the variable itself, so that no zone files are needed.
    void convertsInTheZone_data()
    {
        rows({"UTC0 | 1969-12-31 00:00:00 | -86400", "CST-8 | 2000-02-29 08:00:00 | 951782400",
              "CET-1CEST,M3.5.0,M10.5.0/3 | 2023-12-31 00:59:59 | 1703980799",
              "CET-1CEST,M3.5.0,M10.5.0/3 | 2023-07-01 02:00:00 | 1688169600",
              "CET-1CEST,M3.5.0,M10.5.0/3 | 2100-01-01 01:00:00 | 4102444800",
              "UTC0 | 2024-4-31 0:0:0 | 1714521600 | 2024-05-01 00:00:00",
              "UTC0 | 2023-13-1 0:0:0 | 1704067200 | 2024-01-01 00:00:00",
              "UTC0 | 2024-1-1 0:0:-1 | 1704067199 | 2023-12-31 23:59:59",
              "UTC0 | -2147483648-1-1 0:0:0 | -1", "UTC0 | 2024--2147483648-1 0:0:0 | -1",
              "UTC0 | 2147483647-2147483647-2147483647 2147483647:2147483647:2147483647 | -1"});
    }
    void convertsInTheZone()
    {
        qputenv("TZ", cell(0).toLatin1());
        SYS_TIME_T time;
        // NOLINTNEXTLINE(bugprone-unchecked-string-to-number-conversion): the rows are ours
        QCOMPARE(std::sscanf(qPrintable(cell(1)), "%d-%d-%d %d:%d:%d", &time.year, &time.month,
                             &time.day, &time.hour, &time.minute, &time.second),
                 6);
        const qint64 stamp = CosTime::TimeToTimeStamp(time);
        QCOMPARE(stamp, cell(2).toLongLong());
        if (stamp != -1)
            QCOMPARE(text(CosTime::TimeStampToZoneTime(stamp)),
                     cell(cellOrEmpty(3).isEmpty() ? 1 : 3));
    }

    void refusesWhatNoYearHolds()
    {
        for (const std::int64_t stamp : {INT64_MAX, INT64_MIN})
            QCOMPARE(text(CosTime::TimeStampToZoneTime(stamp)), text(SYS_TIME_T()));
    }
};

QTEST_GUILESS_MAIN(TimeTest)
#include "TimeTest.moc"
