#include "system/Clock.h"

#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "system/TimeZone.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

namespace {

// "2024-02-29 10:15:42"
ClockTexts texts(const QString &time)
{
    const QStringList parts = time.split(QRegularExpression("[- :]"_s));
    ClockTexts result;
    std::copy(parts.begin(), parts.end(), result.begin());
    return result;
}

const QString FOLDER = "/mnt/data/etc/tz"_s;
const QString ZONE_FILE = FOLDER + "/tz.conf"_s;

QByteArray zoneContent()
{
    QFile file(QString::fromStdString(panelPath(ZONE_FILE.toStdString())));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "none";
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
        m_root.write(ZONE_FILE, "TZ=GMT-05:45");
    }

    void knowsTheDaysOfEveryMonth()
    {
        for (QDate month(2000, 1, 1); month.year() <= 2037; month = month.addMonths(1)) {
            const auto day = [month](const char *format) {
                return texts(month.toString(QString::fromLatin1(format)) + " 0:0:0"_s);
            };
            const int last = month.daysInMonth();
            QCOMPARE(clockRange(CLOCK_DAY, day("yyyy-MM-01")).min, 1);
            QCOMPARE(clockRange(CLOCK_DAY, day("yyyy-MM-01")).max, last);
            QCOMPARE(dayAfterMonth(day("yyyy-M-31")), QString::number(last));
            QCOMPARE(dayAfterMonth(day("yyyy-M-05")), "05"_s);
            QCOMPARE(dayAfterYear(day("yyyy-MM-29")), QString::number(std::min(29, last)));
            QCOMPARE(dayAfterYear(day("yyyy-MM-28")), "28"_s);
        }
        QCOMPARE(dayAfterYear(texts("2023-03-31 0:0:0"_s)), "31"_s);
        QCOMPARE(clockRange(CLOCK_DAY, texts("2023-2-01 0:0:0"_s)).max, 30); // not as displayed
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

    void appliesEveryZone()
    {
        QCOMPARE(g_vecGmt.size(), TIME_ZONES);
        for (std::size_t row = 0; row < TIME_ZONES; ++row) {
            // The label says how far east; the variable how far west, with the sign also at zero.
            const QByteArray label = TIME_ZONE_ROWS[row].label;
            QByteArray zone = "GMT" + label.mid(3, 6);
            zone[3] = label[3] == '+' ? '-' : '+';
            if (row == 14)
                zone = "GMT+02:00"; // its label says three hours; this is intended
            qputenv("TZ", "GMT-08:00");
            const std::int64_t before = COS::CosTime::GetTimeStamp();
            applyTimeZone(int(row), 3600);
            const std::int64_t passed = COS::CosTime::GetTimeStamp() - before;
            QVERIFY(passed == 3600 || passed == 3601); // another zone is no other moment
            QCOMPARE(zoneContent(), "TZ=" + zone);
            QCOMPARE(qgetenv("TZ"), zone);

            // London at 16:00 on a summer and a winter day, and the last second of 2037.
            for (const qint64 stamp : {1782921600LL, 1798646400LL, 2145916799LL}) {
                const ClockTexts shown = clockTexts(COS::CosTime::TimeStampToZoneTime(stamp));
                const QDateTime wallClock = QDateTime::fromSecsSinceEpoch(stamp); // as TZ says
                QVERIFY(shown == texts(wallClock.toString("yyyy-MM-dd HH:mm:ss"_s)));
            }
            // The first row that has the value is found again.
            const auto found = static_cast<std::size_t>(loadTimeZone());
            QVERIFY(found <= row && g_vecGmt[found] == zone.toStdString());
        }
    }

    // file, MUCH for ten kilobytes | row; two rows have GMT+02:00
    void loadsTheZone_data()
    {
        rows({"TZ=GMT-05:45 | 25", "TZ=GMT-05:45\nTZ=GMT-09:00\n | 25", "TZ=GMT+02:00 | 14", " | 0",
              "TZ= | 0", "TZ=GMT-05:455 | 0", "ZT=GMT-05:45 | 0", "TZ=MUCH | 0",
              "TZ=GMT-05:45 MUCH | 25", "\x01\x02TZ=GMT-05:45 | 0"});
    }
    void loadsTheZone()
    {
        const QByteArray content = cell(0).toLatin1().replace("MUCH", QByteArray(10240, 'G'));
        m_root.write(ZONE_FILE, content);
        QCOMPARE(loadTimeZone(), number(1));
        QCOMPARE(zoneContent(), content);
    }

    // the process's zone | row
    void makesAMissingFile_data() { rows({"GMT+12:00 | 1", "Europe/Berlin | 0", " | 0"}); }
    void makesAMissingFile()
    {
        const QByteArray zone = cell(0).toLatin1();
        m_root.clear();
        zone.isEmpty() ? qunsetenv("TZ") : qputenv("TZ", zone);
        QCOMPARE(printedBy([] { QCOMPARE(loadTimeZone(), number(1)); }),
                 "--------------[TZ=" + zone + "]\n");
        QCOMPARE(zoneContent(), "TZ=" + zone);
    }

    // the process's zone, with room made or not | then | printed
    void overwritesOnlyWhatHasRoom_data()
    {
        rows({" | made | | get TZ env err [", "UTC | none | UTC | no room for TZ [GMT+02:00]",
              "UTC | made | GMT+02:00", "GMT-08:00 | none | GMT+02:00",
              "Europe/Berlin | none | GMT+02:00", "longer than the room | made | GMT+02:00"});
    }
    void overwritesOnlyWhatHasRoom()
    {
        const QByteArray name = cell(0).toLatin1();
        const QByteArray zone = name.startsWith("longer") ? QByteArray(300, 'Z') : name;
        const QByteArray printed = cellOrEmpty(3).toLatin1();
        // A string of the environment's own, that a write past its end would be seen at.
        std::vector<char> own(3 + static_cast<std::size_t>(zone.size()) + 1);
        qunsetenv("TZ");
        if (!zone.isEmpty()) {
            qstrcpy(own.data(), ("TZ=" + zone).constData());
            putenv(own.data()); // NOLINT(concurrency-mt-unsafe): the test's only thread
        }
        if (cell(1) == "made"_s)
            makeRoomForTimeZone();
        const QByteArray lines = printedBy([] { applyTimeZone(14, 0); });
        QVERIFY2(lines.startsWith(printed) && lines.isEmpty() == printed.isEmpty(),
                 lines.constData());
        QCOMPARE(qgetenv("TZ"), cell(2).toLatin1());
        QCOMPARE(zoneContent(), QByteArray("TZ=GMT+02:00"));
        const bool set = sim::panel().calls().dump().find("SetSysLocalTime") != std::string::npos;
        QCOMPARE(set, printed.isEmpty());
        qunsetenv("TZ"); // before its string goes
    }

    void noRowEmptiesTheFile()
    {
        applyTimeZone(-1, 0);
        QCOMPARE(zoneContent(), QByteArray());
        QCOMPARE(qgetenv("TZ"), QByteArray("GMT-08:00"));
        QVERIFY_EXCEPTION_THROWN(applyTimeZone(int(TIME_ZONES), 0), std::out_of_range);
    }

    void survivesAnUnusableFile()
    {
        m_root.clear();
        m_root.write(FOLDER, "a file, which stops every user, root included");
        QVERIFY(printedBy([] { QCOMPARE(loadTimeZone(), 0); }).startsWith("error = "));
        for (const int row : {14, -1}) {
            QVERIFY(printedBy([&] { applyTimeZone(row, 0); }).startsWith("error = "));
            QCOMPARE(qgetenv("TZ"), QByteArray("GMT+02:00")); // applied, if not kept
        }
    }

private:
    PanelRoot m_root;
};

QTEST_APPLESS_MAIN(ClockTest)
#include "ClockTest.moc"
