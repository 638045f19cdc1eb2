#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/ComParam.h"
#include "system/General.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QComboBox>
#include <QDateTime>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

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

    // word of the switch | what it means; the switch itself writes 1 for on
    void showsTheWords_data() { rows({"0 | on", "1 | off", "65534 | on", "65535 | off"}); }
    void showsTheWords()
    {
        for (const auto &[address, word] : {std::pair{"10590", 3600},
                                            {"10591", 42},
                                            {"10612", number(0)},
                                            {"10613", 5},
                                            {"10614", 250}})
            panel().set(std::string("words.") + address, word);
        makePage();
        const bool on = cell(1) == "on"_s;
        QCOMPARE(fields(), "3600 42 250 5"_s);
        QCOMPARE(sliders(), "42 5"_s);
        const auto buzzer = panel().get("buzzer");
        QVERIFY(buzzer["enabled"] == int(on) && buzzer["tone"] == 5 && buzzer["time"] == 250);
        const QString ending = on ? "Open.png"_s : "Close.png"_s;
        QVERIFY(find<QPushButton>("btn_BeepSwitch")->styleSheet().contains("Switch_"_s + ending));
        QVERIFY(find<QLabel>("lab_BeepVal")->styleSheet().contains("voice_"_s + ending));
    }

    void showsWhatCannotBeRead()
    {
        panel().fail("backstage.AddrRead", -1);
        makePage();
        QCOMPARE(fields(), "   "_s);
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), 1);
        panel().fail("backstage.AddrWrite", -1);
        type("line_Backlightness", "30\n"_s);
        QCOMPARE(panel().get("lcd.brightness").get<int>(), 30); // asked all the same
    }

    // field | range | keys, or none to close | calls
    void takesWhatIsTyped_data()
    {
        rows({"line_Year | 2000 2037", "line_Month | 1 12", "line_Day | 1 30", "line_Hour | 0 23",
              "line_Minute | 0 59", "line_Second | 0 59",
              "line_BacklightTime | 0 3600 | 0 | AddrWrite[10590,[0],1]",
              "line_Backlightness | 1 100 | 07 | AddrWrite[10591,[7],1] setBrightness[7]",
              "line_BeepTime | 0 1000 | 1000 | setBeepTime[1000] AddrWrite[10614,[1000],1]",
              "line_BeepType | 1 5 | 1 | AddrWrite[10613,[1],1] setPwmType[1]",
              "line_BeepType | 1 5 | 3 |"}); // unchanged
    }
    void takesWhatIsTyped()
    {
        const QByteArray name = cell(0).toLatin1();
        QString range;
        whenOpen("SoftKeyboard", [&](const QWidget *keyboard) {
            range = keyboard->findChild<QLabel *>("lab_Min"_s)->text() + u' ' +
                    keyboard->findChild<QLabel *>("lab_Max"_s)->text();
            return true;
        });
        type(name, cellOrEmpty(2).isEmpty() ? "\x1b"_s : cellOrEmpty(2) + u'\n');
        QCOMPARE(range, "MIN:"_s + cell(1).replace(" "_s, " Max:"_s));
        QCOMPARE(settings(), cellOrEmpty(3));
        QVERIFY(cellOrEmpty(2).isEmpty() || field(name) == QString::number(number(2)));
        QCOMPARE(sliders(), field("line_Backlightness") + u' ' + field("line_BeepType"));
    }

    void slidersApplyAtOnce()
    {
        for (const char *name : {"slider_Backlightness", "slider_BeepType"}) {
            find<QSlider>(name)->setSliderDown(true);
            find<QSlider>(name)->setSliderPosition(2);
        }
        QCOMPARE(settings(), "AddrWrite[10591,[2],1] setBrightness[2] AddrWrite[10613,[2],1] "
                             "setPwmType[2]"_s);
        QCOMPARE(fields(), "600 2 100 2"_s);
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
        QCOMPARE(settings().section(u' ', -1), "setEnable[0]"_s);
    }

    void ticksOnFromTheTypedTimeUntilSaved()
    {
        type("line_Minute", "30\n"_s);
        QCOMPARE(field("line_Hour") + field("line_Minute"), "1030"_s);
        const QString second = field("line_Second");
        QTRY_VERIFY_WITH_TIMEOUT(field("line_Second") != second, 3000);
        QCOMPARE(field("line_Minute"), "30"_s);
        QVERIFY(settings().isEmpty()); // nothing is set before Save
        press("btn_SetTime");          // the seconds are the minutes' value
        QCOMPARE(panel().get("clock.written").dump(), std::string("[2026,11,21,10,30,30]"));
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
        const auto pick = [zones](int row) { // as a touch of the row does
            zones->setCurrentIndex(row);
            emit zones->activated(row);
        };
        panel().clearCalls();
        pick(14);
        QCOMPARE(zones->currentText(), "UTC-03:00 Brasilia"_s);
        QCOMPARE(qgetenv("TZ"), QByteArray("GMT+02:00"));
        QTRY_COMPARE(field("line_Hour"), "08"_s);
        pick(14); // again, though it is chosen already
        QCOMPARE(settings().count("SetSysLocalTime"_s), 2);
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
    QString fields()
    {
        return QStringList{field("line_BacklightTime"), field("line_Backlightness"),
                           field("line_BeepTime"), field("line_BeepType")}
            .join(u' ');
    }
    QString sliders()
    {
        return "%1 %2"_s.arg(find<QSlider>("slider_Backlightness")->value())
            .arg(find<QSlider>("slider_BeepType")->value());
    }
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
    static QString settings()
    {
        QStringList found;
        for (const auto &call : panel().calls()) {
            const QString op = QString::fromStdString(call.at("op").get<std::string>());
            if (op.contains("Write"_s) || op.contains(".set"_s, Qt::CaseInsensitive) ||
                op.contains("init"_s))
                found << op.section(u'.', -1) + QString::fromStdString(call.at("args").dump());
        }
        return found.join(u' ');
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
