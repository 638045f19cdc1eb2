#include "platform/cos_time.h"

#include <QtTest>

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
    void convertsInTheZone_data()
    {
        // tzset(3): rules of the zone in the variable itself, so that no zone files are needed.
        const char *berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
        QTest::addColumn<QString>("zone");
        QTest::addColumn<qint64>("stamp");
        QTest::addColumn<QString>("local");
        QTest::newRow("before 1970") << "UTC0" << qint64{-86400} << "1969-12-31 00:00:00";
        QTest::newRow("zone") << "CST-8" << qint64{951782400} << "2000-02-29 08:00:00";
        QTest::newRow("winter") << berlin << qint64{1703980799} << "2023-12-31 00:59:59";
        QTest::newRow("summer") << berlin << qint64{1688169600} << "2023-07-01 02:00:00";
        QTest::newRow("after 2038") << berlin << qint64{4102444800} << "2100-01-01 01:00:00";
    }
    void convertsInTheZone()
    {
        QFETCH(QString, zone);
        QFETCH(qint64, stamp);
        qputenv("TZ", zone.toLatin1());
        const SYS_TIME_T local = CosTime::TimeStampToZoneTime(stamp);
        QTEST(text(local), "local");
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
