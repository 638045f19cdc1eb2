#include "tests/panel/Operator.h"

#include <QImage>

#include <cmath>

namespace {

constexpr int GENERAL_TAB = 0;
constexpr int COM_TAB = 1;
constexpr int BRASILIA = 14; // row of the zones

const QStringList KEPT_FIELDS = {"line_BacklightTime"_s, "line_Backlightness"_s, "line_BeepTime"_s,
                                 "line_BeepType"_s, "line_Year"_s};
const QStringList COM_FIELDS = {"line_ComNum"_s, "line_HmiStation"_s, "line_StandStation"_s,
                                "line_SerialCommiation"_s, "line_TimeCommiation"_s};

// Of the lightest and the darkest grey of a picture, as WCAG 2.1 defines it.
double contrastOf(const QImage &picture)
{
    const QImage greys = picture.convertToFormat(QImage::Format_Grayscale8); // 1024 bytes a line
    const auto [dark, light] =
        std::minmax_element(greys.constBits(), greys.constBits() + greys.sizeInBytes());
    const auto luminance = [](int grey) { return std::pow((grey / 255.0 + 0.055) / 1.055, 2.4); };
    return (luminance(*light) + 0.05) / (luminance(*dark) + 0.05);
}

} // namespace

// The General and COM pages by touch alone, a restart, and every value again.
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
        enter("line_Year", "年"_s, "22031", "2031"); // the first key of the process has no effect
        QVERIFY(m_panel.press("btn_SetTime"_s));
        QVERIFY(m_panel.becomes("clock.written.0"_s, 2031));
    }

    // Whoever turns the backlight down must still see how to turn it up.
    void dimmest()
    {
        slide("slider_Backlightness"_s, "1"_s);
        QVERIFY(m_panel.becomes("lcd.brightness"_s, 1));
        const QString picture = m_panel.file("/dim.png"_s);
        QVERIFY(!m_panel.ask({"ui"_s, "shot"_s, picture}).isUndefined());
        QVERIFY(contrastOf(QImage(picture)) >= 4.5);
    }

    void backlightAndBuzzer()
    {
        enter("line_BacklightTime", "背光时间"_s, "45");
        enter("line_Backlightness", "背光亮度"_s, "60");
        enter("line_BeepTime", "蜂鸣时间"_s, "250");
        slide("slider_BeepType"_s, "4"_s);
        QVERIFY(m_panel.shows("line_BeepType"_s, "4"_s));
        QVERIFY(m_panel.press("btn_BeepSwitch"_s) && m_panel.becomes("buzzer.enabled"_s, 0));
        m_general = texts(KEPT_FIELDS);
    }

    void comPort()
    {
        openTab(COM_TAB);
        enter("line_HmiStation", "HMI 站号"_s, "11");
        enter("line_StandStation", "设备站号"_s, "12");
        for (const auto &[button, field, steps] :
             {std::tuple("btn_CommunIndetail"_s, "line_BaudRate"_s,
                         QStringList{"btn_Communication_R"_s, "btn_BaudRate_R"_s}),
              {"btn_TimeOutIndetail"_s, "line_WaitTimeOut"_s,
               QStringList{"btn_RetryTime_R"_s, "btn_RetryTimeOut_L"_s}}}) {
            QVERIFY(m_panel.press(button) && m_panel.appears(field));
            for (const QString &step : steps + QStringList{"btn_Save"_s})
                QVERIFY2(m_panel.press(step), qPrintable(step));
            QVERIFY(m_panel.goes(field));
        }
        m_com = texts(COM_FIELDS);
        QCOMPARE(m_com, QStringList({"COM1-1"_s, "11"_s, "12"_s, "RS485_2,19200,8,1,NONE"_s,
                                     "20,100,4,1"_s}));
        QCOMPARE(m_panel.get("words.10061"_s).toInt(), 6);
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
        QCOMPARE(m_panel.get("buzzer.enabled"_s).toInt(), 1); // comes back on; intended
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

    void slide(const QString &slider, const QString &value)
    {
        QVERIFY(!m_panel.ask({"ui"_s, "slide"_s, slider, value}).isUndefined());
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
