#include "tests/panel/Operator.h"

// An operator who joins another network than the panel is in, by touch alone.
class WifiStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void joinedAtStart()
    {
        constexpr int WIFI_TAB = 1;
        QVERIFY(m_panel.start());
        QVERIFY(m_panel.press("btn_Net"_s));
        QVERIFY(m_panel.press("tab_Net"_s, WIFI_TAB));
        QVERIFY(isJoined("Workshop"_s));
        QVERIFY(PanelProcess::wait([this] {
            return m_panel.items("list_Wifi"_s) ==
                   QJsonArray({"Office"_s, "Guests"_s, "Warehouse"_s});
        }));
    }

    void wrongPasswordThenRight()
    {
        touchOffice("xoffice"_s, "12"_s); // the x spends the first key of the process
        QVERIFY(m_panel.appears("MessageBox"_s));
        QVERIFY(m_panel.text("label"_s).contains("密码错误"_s));
        QVERIFY(!m_panel.isVisible("wid_wifiConnect"_s));
        QVERIFY(m_panel.press("btn_Ok"_s));
        QVERIFY(m_panel.goes("MessageBox"_s));
        touchOffice("office"_s, "123"_s);
        QVERIFY(isJoined("Office"_s));
        QCOMPARE(m_panel.get("wifi.user.password"_s).toString(), "office123"_s);
    }

    void end()
    {
        QVERIFY(m_panel.press("wid_wifiConnect"_s));
        QVERIFY(m_panel.appears("WifiPara"_s));
        m_panel.ask({"quit"_s}); // with a dialog open
        QCOMPARE(m_panel.waitForEnd(), 0);
    }

private:
    bool isJoined(const QString &network)
    {
        return PanelProcess::wait([&] {
            return m_panel.isVisible("wid_wifiConnect"_s) &&
                   m_panel.text("lab_ssid"_s) == network &&
                   m_panel.style("lab_Ok"_s).contains("tick.png"_s) &&
                   m_panel.text("lab_ip"_s) == "192.168.2.60"_s;
        });
    }

    void touchOffice(const QString &letters, const QString &digits)
    {
        int row = -1;
        QVERIFY(PanelProcess::wait([&] {
            const QVariantList rows = m_panel.items("list_Wifi"_s).toVariantList();
            return (row = rows.indexOf("Office"_s)) >= 0;
        }));
        QVERIFY(m_panel.press("list_Wifi"_s, row));
        QVERIFY(m_panel.shows("lab_Field"_s, "Office"_s));
        QVERIFY(m_panel.type('c', letters, "123"_s));
        QVERIFY(m_panel.type('n', digits) && m_panel.goes("SoftKeyboard"_s));
    }

    Operator m_panel;
};

QTEST_GUILESS_MAIN(WifiStoryTest)
#include "WifiStoryTest.moc"
