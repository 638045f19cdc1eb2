#include "resources/Resources.h"
#include "system/General.h"
#include "tests/support/PageTest.h"
#include "tests/support/PanelRoot.h"
#include "tests/system/PortWords.h"

#include <QComboBox>
#include <QSlider>

using sim::panel;

class GeneralPageTest : public PageTest<General>
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
        setWords(10590, "3600 42"_s);
        setWords(10612, cell(0) + " 5 250"_s);
        makePage();
        const bool on = cell(1) == "on"_s;
        QCOMPARE(texts(FIELDS), "3600|42|250|5"_s);
        QCOMPARE(sliders(), "42 5"_s);
        const auto buzzer = panel().get("buzzer");
        QVERIFY(buzzer["enabled"] == int(on) && buzzer["tone"] == 5 && buzzer["time"] == 250);
        const QString ending = on ? "Open.png"_s : "Close.png"_s;
        QVERIFY(style("btn_BeepSwitch").contains("Switch_"_s + ending));
        QVERIFY(style("lab_BeepVal").contains("voice_"_s + ending));
    }

    void showsWhatCannotBeRead()
    {
        panel().fail("backstage.AddrRead", -1);
        makePage();
        QCOMPARE(texts(FIELDS), "|||"_s);
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), 1);
        panel().fail("backstage.AddrWrite", -1);
        type("line_Backlightness", "30\n"_s);
        QCOMPARE(panel().get("lcd.brightness").get<int>(), 30); // asked all the same
    }

    // field | caption and range | keys, or none to close | calls
    void takesWhatIsTyped_data()
    {
        rows({"line_Year | Year 2000 2037", "line_Month | Month 1 12", "line_Day | Day 1 30",
              "line_Hour | Hour 0 23", "line_Minute | Minute 0 59", "line_Second | Second 0 59",
              "line_BacklightTime | Backlight 0 3600 | 0 | AddrWrite[10590,[0],1]",
              ("line_Backlightness | Brightness 1 100 | 07 | "
               "AddrWrite[10591,[7],1] setBrightness[7]"),
              ("line_BeepTime | Beep Time 0 1000 | 1000 | "
               "setBeepTime[1000] AddrWrite[10614,[1000],1]"),
              "line_BeepType | Beep Tone 1 5 | 1 | AddrWrite[10613,[1],1] setPwmType[1]",
              "line_BeepType | Beep Tone 1 5 | 3 |"}); // unchanged
    }
    void takesWhatIsTyped()
    {
        const QByteArray name = cell(0).toLatin1();
        QString asked;
        whenOpen("SoftKeyboard", [&](const QWidget *keyboard) {
            for (const QString &label : {"lab_Field"_s, "lab_Min"_s, "lab_Max"_s})
                asked += keyboard->findChild<QLabel *>(label)->text().section(u':', -1) + u' ';
            return true;
        });
        type(name.constData(), cellOrEmpty(2).isEmpty() ? "\x1b"_s : cellOrEmpty(2) + u'\n');
        QCOMPARE(asked.trimmed(), cell(1));
        QCOMPARE(settings(), cellOrEmpty(3));
        QVERIFY(cellOrEmpty(2).isEmpty() || text(name.constData()) == QString::number(number(2)));
        QCOMPARE(sliders(), text("line_Backlightness") + u' ' + text("line_BeepType"));
    }

    void slidersApplyAtOnce()
    {
        for (const char *name : {"slider_Backlightness", "slider_BeepType"}) {
            find<QSlider>(name)->setSliderDown(true);
            find<QSlider>(name)->setSliderPosition(2);
        }
        QCOMPARE(settings(), "AddrWrite[10591,[2],1] setBrightness[2] AddrWrite[10613,[2],1] "
                             "setPwmType[2]"_s);
        QCOMPARE(texts(FIELDS), "600|2|100|2"_s);
        QCOMPARE(callsOf("PLATFORM.CPlatBuzzer.open").size(), 1); // the tone alone is heard
    }

    void switchWritesOneForOn()
    {
        for (const int on : {0, 1, 0}) {
            press("btn_BeepSwitch");
            QCOMPARE(panel().get("words.10612").get<int>(), on);
            QCOMPARE(panel().get("buzzer.enabled").get<int>(), on);
            QVERIFY(style("lab_BeepVal").contains(on == 1 ? "voice_Open"_s : "voice_Close"_s));
        }
        makePage(); // the next start turns it on again
        QCOMPARE(panel().get("buzzer.enabled").get<int>(), 1);
        makePage(nullptr);
        press("btn_BeepSwitch");
        QCOMPARE(settings(), "setEnable[0]"_s);
    }

    void ticksOnFromTheTypedTimeUntilSaved()
    {
        type("line_Minute", "30\n"_s);
        QCOMPARE(texts({"line_Hour", "line_Minute"}), "10|30"_s);
        const QString second = text("line_Second");
        QTRY_VERIFY_WITH_TIMEOUT(text("line_Second") != second, 3000);
        QCOMPARE(text("line_Minute"), "30"_s);
        QVERIFY(settings().isEmpty()); // nothing is set before Save
        press("btn_SetTime");          // the seconds are the minutes' value
        QCOMPARE(panel().get("clock.written").dump(), std::string("[2026,11,21,10,30,30]"));
        // From here on it is the panel's own clock that ticks.
        setClock("2031-01-02T03:04:05Z");
        QTRY_COMPARE(texts({"line_Year", "line_Month", "line_Minute"}), "2031|01|04"_s);
    }

    void correctsTheDay()
    {
        setClock("2024-01-31T10:00:00Z");
        QTRY_COMPARE(texts({"line_Year", "line_Day"}), "2024|31"_s);
        type("line_Month", "2\n"_s);
        QCOMPARE(texts({"line_Month", "line_Day"}), "02|29"_s);
        type("line_Year", "2023\n"_s);
        QCOMPARE(texts({"line_Month", "line_Day"}), "02|28"_s);
    }

    void refusedSaveIsTold()
    {
        QVERIFY(enabled("comboBox"));
        panel().set("clock.allowSet", 0);
        makePage();
        QVERIFY(!enabled("comboBox"));
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
        for (int touch = 1; touch <= 2; ++touch) { // again, though it is chosen already
            zones->setCurrentIndex(14);
            emit zones->activated(14);
            QCOMPARE(settings().count("SetSysLocalTime"_s), touch);
            QCOMPARE(qgetenv("TZ"), QByteArray("GMT+02:00"));
        }
        QCOMPARE(zones->currentText(), "UTC-03:00 Brasilia"_s);
        QTRY_COMPARE(text("line_Hour"), "08"_s);
        makePage();
        QCOMPARE(find<QComboBox>("comboBox")->currentIndex(), 14);
    }

private:
    const QByteArrayList FIELDS = {"line_BacklightTime", "line_Backlightness", "line_BeepTime",
                                   "line_BeepType"};

    QString sliders() const
    {
        return "%1 %2"_s.arg(find<QSlider>("slider_Backlightness")->value())
            .arg(find<QSlider>("slider_BeepType")->value());
    }
    void type(const char *name, const QString &keys)
    {
        typeOnKeyboard(keys);
        press(name);
        QVERIFY(dialogsDone());
    }

    void makePage() { makePage(&m_runtime); }
    void makePage(const ComParamLists *runtime)
    {
        m_page = std::make_unique<General>();
        m_page->resize(800, 500);
        m_page->init(runtime);
        m_page->show();
        panel().clearCalls();
    }

    // The calls of the operations that set something, "operation[arguments]", oldest first.
    static QString settings()
    {
        QStringList found;
        for (const auto &call : panel().calls()) {
            const QString op = QString::fromStdString(call.at("op").get<std::string>());
            if (op.contains(QRegularExpression("Write|[.][sS]et|init"_s)))
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
};

QTEST_MAIN(GeneralPageTest)
#include "GeneralPageTest.moc"
