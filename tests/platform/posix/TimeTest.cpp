#include "platform/cos_time.h"
#include "tests/support/Rows.h"

#include <climits>
#include <cstdint>

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
    // zone | stamp | wall clock. tzset(3): rules of the zone in the variable itself, so that no
    // zone files are needed.
    void convertsInTheZone_data()
    {
        rows({"UTC0 | -86400 | 1969-12-31 00:00:00", "CST-8 | 951782400 | 2000-02-29 08:00:00",
              "CET-1CEST,M3.5.0,M10.5.0/3 | 1703980799 | 2023-12-31 00:59:59",
              "CET-1CEST,M3.5.0,M10.5.0/3 | 1688169600 | 2023-07-01 02:00:00",
              "CET-1CEST,M3.5.0,M10.5.0/3 | 4102444800 | 2100-01-01 01:00:00"});
    }
    void convertsInTheZone()
    {
        qputenv("TZ", cell(0).toLatin1());
        const qint64 stamp = cell(1).toLongLong();
        const SYS_TIME_T local = CosTime::TimeStampToZoneTime(stamp);
        QCOMPARE(text(local), cell(2));
        QCOMPARE(qint64{CosTime::TimeToTimeStamp(local)}, stamp);
    }

    void carriesOrRefuses()
    {
        const std::pair<SYS_TIME_T, std::int64_t> cases[] = {
            {{2024, 4, 31, 0, 0, 0}, 1714521600}, // 1 May
            {{2023, 13, 1, 0, 0, 0}, 1704067200},
            {{2024, 1, 1, 0, 0, -1}, 1704067199},
            {{INT_MIN, 1, 1, 0, 0, 0}, -1},
            {{2024, INT_MIN, 1, 0, 0, 0}, -1},
            {{INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX}, -1},
        };
        qputenv("TZ", "UTC0");
        for (const auto &[time, stamp] : cases)
            QCOMPARE(std::int64_t{CosTime::TimeToTimeStamp(time)}, stamp);
        for (const std::int64_t stamp : {INT64_MAX, INT64_MIN})
            QCOMPARE(text(CosTime::TimeStampToZoneTime(stamp)), text(SYS_TIME_T()));
    }
};

QTEST_GUILESS_MAIN(TimeTest)
#include "TimeTest.moc"
