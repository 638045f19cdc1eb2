#include "system/Clock.h"

#include "platform/cos_file.h"
#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "system/TimeZone.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <ctime>

namespace {

constexpr std::int64_t DAY = 86400;

// "2024-02-29 10:15:42"
ClockTexts texts(const QString &time)
{
    const QStringList parts = time.split(QRegularExpression("[- :]"_s));
    ClockTexts result;
    std::copy(parts.begin(), parts.end(), result.begin());
    return result;
}

QString joined(const ClockTexts &time)
{
    return "%1-%2-%3 %4:%5:%6"_s.arg(time[0], time[1], time[2], time[3], time[4], time[5]);
}

// The wall clock as the C library shows it to a process that starts with this TZ.
QString wallClock(const char *zone, std::time_t stamp)
{
    qputenv("TZ", zone);
    tzset();
    std::tm time{};
    localtime_r(&stamp, &time);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &time);
    return QString::fromLatin1(text);
}

QString zoneFile()
{
    return QString::fromStdString(panelPath("/mnt/data/etc/tz/tz.conf"));
}

QByteArray zoneContent()
{
    QFile file(zoneFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
}

void writeZone(const QByteArray &content)
{
    QDir().mkpath(QFileInfo(zoneFile()).path());
    QFile file(zoneFile());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

class ClockTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.clear();
        sim::panel().reset();
        qputenv("TZ", "GMT-08:00");
        QDir().mkpath(QFileInfo(zoneFile()).path());
    }

    void limitsTheDay_data()
    {
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("last");
        for (int month = 1; month <= 12; ++month) {
            const QString shown = "2023-%1-01 00:00:00"_s.arg(month, 2, 10, QLatin1Char('0'));
            QTest::newRow(qPrintable(shown)) << shown << QDate(2023, month, 1).daysInMonth();
        }
        for (int year : {2000, 2024, 2037})
            QTest::addRow("February %d", year)
                << "%1-02-01 00:00:00"_s.arg(year) << QDate(year, 2, 1).daysInMonth();
        QTest::newRow("month as typed") << "2024-2-01 00:00:00"_s << 30;
    }
    void limitsTheDay()
    {
        QFETCH(QString, shown);
        const ClockRange range = clockRange(CLOCK_DAY, texts(shown));
        QCOMPARE(range.min, 1);
        QTEST(range.max, "last");
    }

    void correctsTheDay_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("month"); // typed into the month, else into the year
        QTest::addColumn<QString>("day");
        const auto row = [](const char *typed, bool month, const char *day) {
            QTest::addRow("%s %s", typed, month ? "month" : "year")
                << QString::fromLatin1(typed) + " 0:0:0"_s << month << QString::fromLatin1(day);
        };
        row("2023-02-29", false, "28");
        row("2024-02-29", false, "29");
        row("2023-02-28", false, "28");
        row("2023-03-31", false, "31");
        row("2023-2-31", true, "28");
        row("2024-2-31", true, "29");
        row("2024-2-05", true, "05");
        for (const char *month : {"1", "3", "5", "7", "8", "10", "12"})
            row(("2023-" + QByteArray(month) + "-31").constData(), true, "31");
        for (const char *month : {"4", "6", "9", "11"})
            row(("2023-" + QByteArray(month) + "-31").constData(), true, "30");
    }
    void correctsTheDay()
    {
        QFETCH(QString, typed);
        QFETCH(bool, month);
        QTEST(month ? dayAfterMonth(texts(typed)) : dayAfterYear(texts(typed)), "day");
    }

    void showsAnyTime_data()
    {
        QTest::addColumn<std::int64_t>("stamp");
        QTest::addColumn<QString>("shown");
        QTest::newRow("epoch") << std::int64_t{0} << "1970-01-01 08:00:00"_s;
        QTest::newRow("before 1970") << -DAY << "1969-12-31 08:00:00"_s;
        QTest::newRow("after 2037") << std::int64_t{4102444800} << "2100-01-01 08:00:00"_s;
        QTest::newRow("year 800") << std::int64_t{-36920448000} << "0800-01-15 08:00:00"_s;
    }
    void showsAnyTime()
    {
        QFETCH(std::int64_t, stamp);
        QTEST(joined(clockTexts(COS::CosTime::TimeStampToZoneTime(stamp))), "shown");
    }

    void writesSixWords()
    {
        const QStringList values = clockValues(texts("2026-11-21 10:15:42"_s));
        QCOMPARE(writeClock(values), 0);
        QCOMPARE(sim::panel().get("clock.written").dump(), std::string("[2026,11,21,10,15,15]"));
        QCOMPARE(writeClock(values.mid(1)), -2);
        QCOMPARE(writeClock(values + values), -2);
        sim::panel().fail("backstage.AddrWrite", -1);
        QCOMPARE(writeClock(values), -3);
    }

    void appliesEveryZone_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QByteArray>("zone");
        for (int row = 0; row < int(TIME_ZONES); ++row) {
            const QString label =
                QString::fromLatin1(TIME_ZONE_ROWS[static_cast<std::size_t>(row)].label);
            // The label says how far east; the variable how far west, with the sign also at zero.
            QByteArray zone = "GMT" + label.mid(3, 6).toLatin1();
            zone[3] = label[3] == QLatin1Char('+') ? '-' : '+';
            if (row == 14)
                zone = "GMT+02:00"; // its label says three hours; this is intended
            QTest::addRow("%d %s", row, qPrintable(label)) << row << label << zone;
        }
    }
    void appliesEveryZone()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, zone);
        QCOMPARE(g_vecGmt.size(), TIME_ZONES);
        const std::int64_t before = COS::CosTime::GetTimeStamp();
        applyTimeZone(row, 0);
        QVERIFY(COS::CosTime::GetTimeStamp() - before <= 1); // another zone is no other moment
        QCOMPARE(zoneContent(), "TZ=" + zone);
        QCOMPARE(qgetenv("TZ"), zone);

        // London at 16:00 on a summer and a winter day, and the last second of 2037.
        for (const std::int64_t stamp : {1782921600LL, 1798646400LL, 2145916799LL}) {
            qputenv("TZ", "GMT-08:00");
            applyTimeZone(row, 0);
            const QString shown = joined(clockTexts(COS::CosTime::TimeStampToZoneTime(stamp)));
            QCOMPARE(shown, wallClock(zone.constData(), static_cast<std::time_t>(stamp)));
        }
        // The first row that has the value is found again.
        const int found = loadTimeZone();
        QVERIFY(found <= row && g_vecGmt[static_cast<std::size_t>(found)] == zone.toStdString());
    }

    void loadsTheZone_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("row");
        QTest::newRow("a row") << QByteArray("TZ=GMT-05:45") << 25;
        QTest::newRow("with a line end") << QByteArray("TZ=GMT-05:45\nTZ=GMT-09:00\n") << 25;
        QTest::newRow("doubled value") << QByteArray("TZ=GMT+02:00") << 14;
        QTest::newRow("empty") << QByteArray() << 0;
        QTest::newRow("no value") << QByteArray("TZ=") << 0;
        QTest::newRow("no row") << QByteArray("TZ=Europe/Berlin") << 0;
        QTest::newRow("longer than a row") << QByteArray("TZ=GMT-05:455") << 0;
        QTest::newRow("another name") << QByteArray("ZT=GMT-05:45") << 0;
        QTest::newRow("10 kB") << "TZ=" + QByteArray(10240, 'G') << 0;
        QTest::newRow("10 kB behind") << "TZ=GMT-05:45 " + QByteArray(10240, 'G') << 25;
        QTest::newRow("binary") << QByteArray("\0\xff\x01TZ=GMT-05:45", 15) << 0;
        QTest::newRow("binary value") << QByteArray("TZ=\xff\xfe\0GMT", 9) << 0;
    }
    void loadsTheZone()
    {
        QFETCH(QByteArray, content);
        writeZone(content);
        QTEST(loadTimeZone(), "row");
        QCOMPARE(zoneContent(), content);
    }

    void makesAMissingFile_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<int>("row");
        QTest::newRow("known") << QByteArray("GMT+12:00") << 1;
        QTest::newRow("unknown") << QByteArray("Europe/Berlin") << 0;
        QTest::newRow("none") << QByteArray() << 0;
    }
    void makesAMissingFile()
    {
        QFETCH(QByteArray, zone);
        m_root.clear();
        zone.isEmpty() ? qunsetenv("TZ") : qputenv("TZ", zone);
        int row = -1;
        QCOMPARE(printedBy([&] { row = loadTimeZone(); }), "--------------[TZ=" + zone + "]\n");
        QTEST(row, "row");
        QCOMPARE(zoneContent(), "TZ=" + zone);
    }

    void overwritesOnlyWhatHasRoom_data()
    {
        QTest::addColumn<QByteArray>("zone"); // empty: none
        QTest::addColumn<bool>("room");       // made beforehand
        QTest::addColumn<QByteArray>("then");
        QTest::addColumn<QByteArray>("printed");
        const QByteArray chosen = "GMT+02:00";
        const QByteArray longZone(300, 'Z');
        QTest::newRow("none") << QByteArray() << true << QByteArray()
                              << QByteArray("get TZ env err [");
        QTest::newRow("short") << QByteArray("UTC") << false << QByteArray("UTC")
                               << QByteArray("no room for TZ [GMT+02:00]\n");
        QTest::newRow("short, room made") << QByteArray("UTC") << true << chosen << QByteArray();
        QTest::newRow("as long") << QByteArray("GMT-08:00") << false << chosen << QByteArray();
        QTest::newRow("longer") << QByteArray("Europe/Berlin") << false << chosen << QByteArray();
        QTest::newRow("longer than the room") << longZone << true << chosen << QByteArray();
    }
    void overwritesOnlyWhatHasRoom()
    {
        QFETCH(QByteArray, zone);
        QFETCH(bool, room);
        QFETCH(QByteArray, printed);
        // A string of the environment's own, that a write past its end would be seen at.
        std::vector<char> own(3 + static_cast<std::size_t>(zone.size()) + 1);
        qunsetenv("TZ");
        if (!zone.isEmpty()) {
            qstrcpy(own.data(), ("TZ=" + zone).constData());
            putenv(own.data()); // NOLINT(concurrency-mt-unsafe): the test's only thread
        }
        if (room)
            makeRoomForTimeZone();
        const QByteArray lines = printedBy([] { applyTimeZone(14, 0); });
        QVERIFY2(lines.startsWith(printed) && lines.isEmpty() == printed.isEmpty(),
                 lines.constData());
        QTEST(qgetenv("TZ"), "then");
        QCOMPARE(zoneContent(), QByteArray("TZ=GMT+02:00"));
        const bool set = sim::panel().calls().dump().find("SetSysLocalTime") != std::string::npos;
        QCOMPARE(set, printed.isEmpty());
        qunsetenv("TZ"); // before its string goes
    }

    void survivesAnUnusableFile()
    {
        // A file where the folder should be stops every user, root included.
        QFile blocker(QFileInfo(zoneFile()).path());
        QVERIFY(QDir().rmdir(blocker.fileName()));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        int row = -1;
        QVERIFY(printedBy([&] { row = loadTimeZone(); }).startsWith("error = "));
        QCOMPARE(row, 0);
        QVERIFY(printedBy([] { applyTimeZone(14, 0); }).startsWith("error = "));
        QCOMPARE(qgetenv("TZ"), QByteArray("GMT+02:00")); // applied, if not kept
        applyTimeZone(-1, 0);
        QCOMPARE(qgetenv("TZ"), QByteArray("GMT+02:00"));
    }

    void emptiesTheFileWithoutARow()
    {
        writeZone("TZ=GMT-05:45");
        applyTimeZone(-1, 0);
        QCOMPARE(zoneContent(), QByteArray());
        QCOMPARE(qgetenv("TZ"), QByteArray("GMT-08:00"));
        QVERIFY_EXCEPTION_THROWN(applyTimeZone(int(TIME_ZONES), 0), std::out_of_range);
    }

private:
    PanelRoot m_root;
};

QTEST_APPLESS_MAIN(ClockTest)
#include "ClockTest.moc"
