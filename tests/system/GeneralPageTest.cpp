#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/ComParam.h"
#include "system/General.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDateTime>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QtTest>

using sim::panel;

class GeneralPageTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init()
    {
        m_root.clear();
        panel().reset();
        qputenv("TZ", "GMT-00:00");
        setClock("2026-11-21T10:15:42Z");
        makePage();
    }

    void showsTheWords_data()
    {
        QTest::addColumn<int>("word");
        QTest::addColumn<bool>("on");
        QTest::newRow("0 is on") << 0 << true;
        QTest::newRow("1, as the switch writes on, is off") << 1 << false;
        QTest::newRow("even is on") << 65534 << true;
        QTest::newRow("odd is off") << 65535 << false;
    }
    void showsTheWords()
    {
        QFETCH(int, word);
        QFETCH(bool, on);
        panel().set("words.10590", 3600);
        panel().set("words.10591", 42);
        panel().set("words.10612", word);
        panel().set("words.10613", 5);
        panel().set("words.10614", 250);
        makePage();
        QCOMPARE(field("line_BacklightTime"), "3600"_s);
        QCOMPARE(field("line_Backlightness"), "42"_s);
        QCOMPARE(find<QSlider>("slider_Backlightness")->value(), 42);
        QCOMPARE(field("line_BeepType"), "5"_s);
        QCOMPARE(find<QSlider>("slider_BeepType")->value(), 5);
        QCOMPARE(field("line_BeepTime"), "250"_s);
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), on ? 1 : 0);
        QCOMPARE(panel().get("buzzer.tone").get<int>(), 5);
        QCOMPARE(panel().get("buzzer.time").get<int>(), 250);
        const QString ending = on ? "Open.png"_s : "Close.png"_s;
        QVERIFY(find<QPushButton>("btn_BeepSwitch")->styleSheet().contains("Switch_"_s + ending));
        QVERIFY(find<QLabel>("lab_BeepVal")->styleSheet().contains("voice_"_s + ending));
    }

    void showsWhatCannotBeRead()
    {
        panel().fail("backstage.AddrRead", -1);
        makePage();
        for (const char *name :
             {"line_BacklightTime", "line_Backlightness", "line_BeepType", "line_BeepTime"})
            QCOMPARE(field(name), QString());
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), 1);
        panel().fail("backstage.AddrWrite", -1);
        type("line_Backlightness", "30\n"_s);
        QCOMPARE(panel().get("lcd.brightness").get<int>(),
                 30); // the hardware is asked all the same
    }

    void asksWithinTheRange_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("min");
        QTest::addColumn<QString>("max");
        const auto row = [](const char *name, const char *min, const char *max) {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(min)
                                << QString::fromLatin1(max);
        };
        row("line_Year", "MIN:2000", "Max:2037");
        row("line_Month", "MIN:1", "Max:12");
        row("line_Day", "MIN:1", "Max:30");
        row("line_Hour", "MIN:0", "Max:23");
        row("line_Minute", "MIN:0", "Max:59");
        row("line_Second", "MIN:0", "Max:59");
        row("line_BacklightTime", "MIN:0", "Max:3600");
        row("line_Backlightness", "MIN:1", "Max:100");
        row("line_BeepTime", "MIN:0", "Max:1000");
        row("line_BeepType", "MIN:1", "Max:5");
    }
    void asksWithinTheRange()
    {
        QFETCH(QString, name);
        QString min;
        QString max;
        whenOpen("SoftKeyboard", [&](QWidget *keyboard) {
            min = keyboard->findChild<QLabel *>("lab_Min"_s)->text();
            max = keyboard->findChild<QLabel *>("lab_Max"_s)->text();
            return true;
        });
        type(qPrintable(name), "\x1b"_s);
        QTEST(min, "min");
        QTEST(max, "max");
        QCOMPARE(settings(), QStringList());
    }

    void appliesWhatIsTyped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("off-time") << "line_BacklightTime"_s
                                  << "0\n"_s << QStringList{"AddrWrite[10590,[0],1]"_s};
        QTest::newRow("brightness")
            << "line_Backlightness"_s
            << "07\n"_s << QStringList{"AddrWrite[10591,[7],1]"_s, "setBrightness[7]"_s};
        QTest::newRow("beep time")
            << "line_BeepTime"_s
            << "1000\n"_s << QStringList{"setBeepTime[1000]"_s, "AddrWrite[10614,[1000],1]"_s};
        QTest::newRow("tone") << "line_BeepType"_s
                              << "1\n"_s
                              << QStringList{"AddrWrite[10613,[1],1]"_s, "setPwmType[1]"_s};
        QTest::newRow("unchanged") << "line_BeepType"_s
                                   << "3\n"_s << QStringList();
    }
    void appliesWhatIsTyped()
    {
        QFETCH(QString, name);
        QFETCH(QString, keys);
        type(qPrintable(name), keys);
        QTEST(settings(), "calls");
        QCOMPARE(field(qPrintable(name)), QString::number(keys.trimmed().toInt()));
        QCOMPARE(find<QSlider>("slider_Backlightness")->value(),
                 field("line_Backlightness").toInt());
        QCOMPARE(find<QSlider>("slider_BeepType")->value(), field("line_BeepType").toInt());
    }

    void slidersApplyAtOnce()
    {
        for (const char *name : {"slider_Backlightness", "slider_BeepType"}) {
            find<QSlider>(name)->setSliderDown(true);
            find<QSlider>(name)->setSliderPosition(2);
        }
        QCOMPARE(settings(), (QStringList{"AddrWrite[10591,[2],1]"_s, "setBrightness[2]"_s,
                                          "AddrWrite[10613,[2],1]"_s, "setPwmType[2]"_s}));
        QCOMPARE(field("line_Backlightness") + field("line_BeepType"), "22"_s);
        QCOMPARE(panel().calls().dump().find("CPlatBuzzer.open"),
                 panel().calls().dump().rfind("CPlatBuzzer.open")); // the tone alone is heard
    }

    void switchWritesOneForOn()
    {
        for (const int on : {0, 1}) {
            press("btn_BeepSwitch");
            QCOMPARE(panel().get("words.10612").get<int>(), on);
            QCOMPARE(panel().get("buzzer.enabled").get<int>(), on);
            const QString image = on == 1 ? "voice_Open"_s : "voice_Close"_s;
            QVERIFY(find<QLabel>("lab_BeepVal")->styleSheet().contains(image));
        }
        press("btn_BeepSwitch");
        makePage(); // the next start turns it on again
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), 1);
    }

    void switchWithoutRuntimeWritesNothing()
    {
        m_page = std::make_unique<General>();
        m_page->init(nullptr);
        m_page->show();
        press("btn_BeepSwitch");
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), 0);
        QVERIFY(settings().filter("Write"_s).isEmpty());
    }

    void ticksOnFromTheTypedTime()
    {
        type("line_Minute", "30\n"_s);
        QCOMPARE(field("line_Hour") + field("line_Minute"), "1030"_s);
        const QString second = field("line_Second");
        QTRY_VERIFY_WITH_TIMEOUT(field("line_Second") != second, 3000);
        QCOMPARE(field("line_Minute"), "30"_s);
        QVERIFY(settings().isEmpty()); // nothing is set before Save
        press("btn_SetTime");
        // From here on it is the panel's own clock that ticks.
        setClock("2031-01-02T03:04:05Z");
        QTRY_COMPARE(field("line_Year") + field("line_Month") + field("line_Minute"), "20310104"_s);
    }

    void correctsTheDay()
    {
        setClock("2024-01-31T10:00:00Z");
        QTRY_COMPARE(field("line_Year") + field("line_Day"), "202431"_s);
        type("line_Month", "2\n"_s);
        QCOMPARE(field("line_Month") + field("line_Day"), "0229"_s);
        type("line_Year", "2023\n"_s);
        QCOMPARE(field("line_Month") + field("line_Day"), "0228"_s);
    }

    void saveWritesTheMinuteAsSeconds()
    {
        type("line_Minute", "30\n"_s);
        type("line_Year", "2030\n"_s);
        press("btn_SetTime");
        QCOMPARE(panel().get("clock.written").dump(), std::string("[2030,11,21,10,30,30]"));
    }

    void refusedSaveIsTold()
    {
        QVERIFY(find<QComboBox>("comboBox")->isEnabled());
        panel().set("clock.allowSet", 0);
        makePage();
        QVERIFY(!find<QComboBox>("comboBox")->isEnabled());
        QString said;
        answerNextBox(1, &said);
        press("btn_SetTime");
        QVERIFY(dialogsDone());
        QCOMPARE(said, "Failed to update time!"_s);
    }

    void choosesAZone()
    {
        auto *zones = find<QComboBox>("comboBox");
        QCOMPARE(zones->currentIndex(), 17); // from the environment
        QCOMPARE(zones->count(), 39);
        const auto pick = [zones](int row) {
            zones->showPopup();
            const QRect place = zones->view()->visualRect(zones->model()->index(row, 0));
            QTest::mouseMove(zones->view()->viewport(), place.center());
            QTest::qWait(QApplication::doubleClickInterval() +
                         1); // else it takes it for the opening
            QTest::mouseClick(zones->view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                              place.center());
        };
        zones->setCurrentIndex(12); // so that the row is in sight
        pick(14);
        QCOMPARE(zones->currentText(), "UTC-03:00 Brasilia"_s);
        QCOMPARE(qgetenv("TZ"), QByteArray("GMT+02:00"));
        QTRY_COMPARE(field("line_Hour"), "08"_s);
        pick(14); // again, though it is chosen already
        QCOMPARE(settings().size(), 0);
        makePage();
        QCOMPARE(find<QComboBox>("comboBox")->currentIndex(), 14);
    }

private:
    template <typename T>
    T *find(const char *name)
    {
        return m_page->findChild<T *>(QString::fromLatin1(name));
    }
    QString field(const char *name) { return find<QLineEdit>(name)->text(); }
    void press(const char *name) { QTest::mouseClick(find<QWidget>(name), Qt::LeftButton); }
    void type(const char *name, const QString &keys)
    {
        typeOnKeyboard(keys);
        press(name);
        QVERIFY(dialogsDone());
    }

    void makePage()
    {
        m_page = std::make_unique<General>();
        m_page->resize(800, 500);
        m_page->init(&m_runtime);
        m_page->show();
        panel().clearCalls();
    }

    // The calls of the operations that set something, "operation[arguments]", oldest first.
    static QStringList settings()
    {
        QStringList found;
        for (const auto &call : panel().calls()) {
            const QString op = QString::fromStdString(call.at("op").get<std::string>());
            if (op.contains("Write"_s) || op.contains(".set"_s) || op.contains("init"_s))
                found << op.section(QLatin1Char('.'), -1) +
                             QString::fromStdString(call.at("args").dump());
        }
        return found;
    }

    // Sets the panel's clock, as "2026-11-21T10:15:42Z"; the zone is UTC.
    static void setClock(const char *time)
    {
        const QDateTime moment = QDateTime::fromString(QString::fromLatin1(time), Qt::ISODate);
        panel().set("clock.offset", QDateTime::currentDateTimeUtc().secsTo(moment));
    }

    PanelRoot m_root;
    ComParamLists m_runtime;
    std::unique_ptr<General> m_page;
};

QTEST_MAIN(GeneralPageTest)
#include "GeneralPageTest.moc"
