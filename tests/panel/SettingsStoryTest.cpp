#include "tests/panel/Operator.h"

#include <QImage>

#include <cmath>

namespace {

constexpr int GENERAL_TAB = 0;
constexpr int COM_TAB = 1;
constexpr int BRASILIA = 14; // row of the zones

const QStringList KEPT_FIELDS = {
    "line_BacklightTime"_s, "line_Backlightness"_s, "line_BeepTime"_s, "line_BeepType"_s,
    "line_Year"_s,          "line_Month"_s,         "line_Day"_s};
const QStringList COM_FIELDS = {"line_ComNum"_s, "line_HmiStation"_s, "line_StandStation"_s,
                                "line_SerialCommiation"_s, "line_TimeCommiation"_s};

// Of the lightest and the darkest grey of a picture, as WCAG 2.1 defines it.
double contrastOf(const QImage &picture)
{
    int light = 0;
    int dark = 255;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            light = std::max(light, qGray(picture.pixel(x, y)));
            dark = std::min(dark, qGray(picture.pixel(x, y)));
        }
    }
    const auto luminance = [](int grey) { return std::pow((grey / 255.0 + 0.055) / 1.055, 2.4); };
    return (luminance(light) + 0.05) / (luminance(dark) + 0.05);
}

} // namespace

// Every field of the General and COM pages by touch alone, a restart, and every value again.
class SettingsStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_panel.start());
        openTab(GENERAL_TAB);
    }

    void clockAndZone()
    {
        QVERIFY(m_panel.press("comboBox"_s, BRASILIA));
        // First, so that the minute does not go by while the rest is entered.
        enter("line_Second", "秒"_s, "31", "01"); // the 3 spends the first key of the process
        enter("line_Year", "年"_s, "2031");
        enter("line_Month", "月"_s, "2", "02");
        enter("line_Day", "日"_s, "28");
        enter("line_Hour", "时"_s, "7", "07");
        enter("line_Minute", "分"_s, "9", "09");
        QVERIFY(m_panel.press("btn_SetTime"_s));
        QVERIFY(m_panel.becomes("clock.written"_s, QJsonArray({2031, 2, 28, 7, 9, 9})));
        QFile zone(m_panel.file("/mnt/data/etc/tz/tz.conf"_s));
        QVERIFY(zone.open(QIODevice::ReadOnly));
        QCOMPARE(zone.readAll(), QByteArray("TZ=GMT+02:00"));
    }

    // Whoever turns the backlight down must still see how to turn it up.
    void dimmest()
    {
        enter("line_Backlightness", "背光亮度"_s, "2");
        QVERIFY(m_panel.ask({"ui"_s, "slide"_s, "slider_Backlightness"_s, "0"_s}).isUndefined());
        QVERIFY(!m_panel.ask({"ui"_s, "slide"_s, "slider_Backlightness"_s, "1"_s}).isUndefined());
        QVERIFY(m_panel.becomes("lcd.brightness"_s, 1));
        const QString picture = m_panel.file("/dim.png"_s);
        QVERIFY2(!m_panel.ask({"ui"_s, "shot"_s, picture}).isUndefined(),
                 qPrintable(m_panel.error()));
        const double contrast = contrastOf(QImage(picture));
        QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    }

    void backlightAndBuzzer()
    {
        enter("line_BacklightTime", "背光时间"_s, "45");
        enter("line_Backlightness", "背光亮度"_s, "60");
        enter("line_BeepTime", "蜂鸣时间"_s, "250");
        QVERIFY(!m_panel.ask({"ui"_s, "slide"_s, "slider_BeepType"_s, "4"_s}).isUndefined());
        QVERIFY(m_panel.shows("line_BeepType"_s, "4"_s));
        QVERIFY(m_panel.press("btn_BeepSwitch"_s) && m_panel.becomes("buzzer.enabled"_s, 0));
        QCOMPARE(m_panel.get("lcd.brightness"_s).toInt(), 60);
        m_general = texts(KEPT_FIELDS);
    }

    void comPort()
    {
        openTab(COM_TAB);
        enter("line_HmiStation", "HMI 站号"_s, "11");
        enter("line_StandStation", "设备站号"_s, "12");
        QVERIFY(m_panel.press("btn_CommunIndetail"_s) && m_panel.appears("line_BaudRate"_s));
        pressAll({"btn_Communication_R"_s, "btn_BaudRate_R"_s, "btn_ByteSize_R"_s,
                  "btn_StopBits_R"_s, "btn_Parity_R"_s, "btn_Save"_s});
        QVERIFY(m_panel.goes("line_BaudRate"_s));
        QVERIFY(m_panel.press("btn_TimeOutIndetail"_s) && m_panel.appears("line_WaitTimeOut"_s));
        enter("line_WaitTimeOut", "等待超时(ms)"_s, "70");
        enter("line_ReadTimeOut", "读取超时(ms)"_s, "80");
        pressAll({"btn_RetryTime_R"_s, "btn_RetryTimeOut_L"_s, "btn_Save"_s});
        QVERIFY(m_panel.goes("line_WaitTimeOut"_s));
        m_com = texts(COM_FIELDS);
        QCOMPARE(m_com.mid(1),
                 QStringList({"11"_s, "12"_s, "RS485_2,19200,7,2,ODD"_s, "70,80,4,1"_s}));
        QJsonArray words;
        for (int address = 10061; address < 10072; ++address)
            words += m_panel.get("words.%1"_s.arg(address));
        QCOMPARE(words, QJsonArray({6, 4, 7, 2, 1, 70, 80, 4, 1, 11, 12}));
    }

    void foundAgain()
    {
        m_panel.ask({"quit"_s});
        QCOMPARE(m_panel.waitForEnd(), 0);
        QVERIFY(m_panel.start());
        openTab(GENERAL_TAB);
        QCOMPARE(texts(KEPT_FIELDS), m_general);
        QCOMPARE(m_panel.index("comboBox"_s), BRASILIA);
        QCOMPARE(m_panel.get("lcd.brightness"_s).toInt(), 60);
        QCOMPARE(m_panel.get("buzzer.enabled"_s).toInt(),
                 1); // turned off, it comes back on; intended
        openTab(COM_TAB);
        QCOMPARE(texts(COM_FIELDS), m_com);
        m_panel.ask({"quit"_s});
        QCOMPARE(m_panel.waitForEnd(), 0);
    }

private:
    void openTab(int tab)
    {
        QVERIFY(m_panel.press("btn_Sysset"_s));
        QVERIFY(m_panel.press("tab_System"_s, tab));
        QVERIFY(m_panel.appears(tab == GENERAL_TAB ? "comboBox"_s : "line_ComNum"_s));
    }

    // Touches the field, which the keyboard calls `caption`, and types a number into it; it shows
    // `shown` then.
    void enter(const char *field, const QString &caption, const char *digits,
               const char *shown = nullptr)
    {
        const QString name = QLatin1String(field);
        QVERIFY2(m_panel.press(name) && m_panel.shows("lab_Field"_s, caption), field);
        QVERIFY2(m_panel.type('n', QLatin1String(digits)) && m_panel.goes("SoftKeyboard"_s), field);
        QCOMPARE(m_panel.text(name), QString::fromLatin1(shown == nullptr ? digits : shown));
    }

    void pressAll(const QStringList &buttons)
    {
        for (const QString &button : buttons)
            QVERIFY2(m_panel.press(button), qPrintable(button));
    }

    QStringList texts(const QStringList &fields)
    {
        QStringList all;
        for (const QString &field : fields)
            all += m_panel.text(field);
        return all;
    }

    Operator m_panel;
    QStringList m_general;
    QStringList m_com;
};

QTEST_GUILESS_MAIN(SettingsStoryTest)
#include "SettingsStoryTest.moc"
