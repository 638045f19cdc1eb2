#include "platform/cos_time.h"

#include <QtTest>

#include <climits>
#include <cstdint>

Q_DECLARE_METATYPE(COS::SYS_TIME_T)

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
        const QByteArray berlin("CET-1CEST,M3.5.0,M10.5.0/3");
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<qint64>("stamp");
        QTest::addColumn<QString>("local");
        QTest::newRow("UTC") << QByteArray("UTC0") << qint64{0}
                             << QStringLiteral("1970-01-01 00:00:00");
        QTest::newRow("another zone at once")
            << QByteArray("CST-8") << qint64{951782400} << QStringLiteral("2000-02-29 08:00:00");
        QTest::newRow("winter") << berlin << qint64{1703980799}
                                << QStringLiteral("2023-12-31 00:59:59");
        QTest::newRow("summer") << berlin << qint64{1688169600}
                                << QStringLiteral("2023-07-01 02:00:00");
        QTest::newRow("after 2038")
            << berlin << qint64{4102444800} << QStringLiteral("2100-01-01 01:00:00");
        QTest::newRow("before 1970")
            << QByteArray("UTC0") << qint64{-86400} << QStringLiteral("1969-12-31 00:00:00");
    }
    void convertsInTheZone()
    {
        QFETCH(QByteArray, zone);
        QFETCH(qint64, stamp);
        qputenv("TZ", zone);
        const SYS_TIME_T local = CosTime::TimeStampToZoneTime(stamp);
        QTEST(text(local), "local");
        QCOMPARE(qint64{CosTime::TimeToTimeStamp(local)}, stamp);
    }

    void carriesOrRefuses_data()
    {
        QTest::addColumn<SYS_TIME_T>("time");
        QTest::addColumn<qint64>("stamp");
        QTest::newRow("31 April") << SYS_TIME_T{2024, 4, 31, 0, 0, 0} << qint64{1714521600};
        QTest::newRow("month 13") << SYS_TIME_T{2023, 13, 1, 0, 0, 0} << qint64{1704067200};
        QTest::newRow("minus a second") << SYS_TIME_T{2024, 1, 1, 0, 0, -1} << qint64{1704067199};
        QTest::newRow("lowest year") << SYS_TIME_T{INT_MIN, 1, 1, 0, 0, 0} << qint64{-1};
        QTest::newRow("lowest month") << SYS_TIME_T{2024, INT_MIN, 1, 0, 0, 0} << qint64{-1};
        QTest::newRow("no such year")
            << SYS_TIME_T{INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX} << qint64{-1};
    }
    void carriesOrRefuses()
    {
        QFETCH(SYS_TIME_T, time);
        qputenv("TZ", "UTC0");
        QTEST(qint64{CosTime::TimeToTimeStamp(time)}, "stamp");
    }

    void stampBeyondTheCalendarIsTheEpoch()
    {
        for (const std::int64_t stamp : {INT64_MAX, INT64_MIN})
            QCOMPARE(text(CosTime::TimeStampToZoneTime(stamp)), text(SYS_TIME_T()));
    }

    void sleepsAtLeastAsLong()
    {
        const std::int64_t before = CosTime::GetTickCountCos();
        CosTime::SleepCos(-5);
        CosTime::SleepCos(30);
        QVERIFY(CosTime::GetTickCountCos() - before >= 30);
    }
};

QTEST_GUILESS_MAIN(TimeTest)
#include "TimeTest.moc"
