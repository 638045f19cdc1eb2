#include "tests/panel/Operator.h"

#include <QJsonDocument>

namespace {

constexpr int WIFI_TAB = 1;

} // namespace

// An operator who joins one network after the other, by touch alone.
class WifiStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_panel.start());
        QVERIFY(m_panel.press("btn_Net"_s));
        QVERIFY(m_panel.press("tab_Net"_s, WIFI_TAB));
    }

    void joinedAtStart()
    {
        QVERIFY(isJoined("Workshop"_s));
        QVERIFY(PanelProcess::wait([this] {
            return m_panel.items("list_Wifi"_s) ==
                   QJsonArray({"Office"_s, "Guests"_s, "Warehouse"_s});
        }));
    }

    void openNetwork()
    {
        QVERIFY(touchNetwork("Guests"_s));
        QVERIFY(isJoined("Guests"_s));
        QCOMPARE(m_panel.get("wifi.user.ssid"_s).toString(), "Guests"_s);
    }

    void wrongPasswordThenRight()
    {
        QVERIFY(touchNetwork("Office"_s));
        QVERIFY(m_panel.shows("lab_Field"_s, "Office"_s));
        type("xoffice"_s, "12"_s); // the x spends the first key of the process
        QVERIFY(m_panel.appears("MessageBox"_s));
        QVERIFY(m_panel.text("label"_s).contains("密码错误"_s));
        QVERIFY(!m_panel.isVisible("wid_wifiConnect"_s));
        QVERIFY(m_panel.press("btn_Ok"_s));
        QVERIFY(m_panel.goes("MessageBox"_s));
        QVERIFY(touchNetwork("Office"_s));
        type("office"_s, "123"_s);
        QVERIFY(isJoined("Office"_s));
        QCOMPARE(m_panel.get("wifi.user.password"_s).toString(), "office123"_s);
    }

    void linkLostAndBack()
    {
        const QJsonArray inRange = m_panel.get("wifi.aps"_s).toArray();
        QVERIFY(m_panel.set("wifi.aps"_s, "[]"));
        QVERIFY(m_panel.goes("wid_wifiConnect"_s));
        QVERIFY(m_panel.set("wifi.aps"_s, QJsonDocument(inRange).toJson()));
        QVERIFY(isJoined("Office"_s));
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

    bool touchNetwork(const QString &network)
    {
        int row = -1;
        return PanelProcess::wait([&] {
                   const QJsonArray rows = m_panel.items("list_Wifi"_s);
                   for (row = rows.size() - 1; row >= 0 && rows[row].toString() != network;)
                       --row;
                   return row >= 0;
               }) &&
               m_panel.press("list_Wifi"_s, row);
    }

    void type(const QString &letters, const QString &digits)
    {
        QVERIFY(m_panel.type('c', letters, "123"_s));
        QVERIFY(m_panel.type('n', digits) && m_panel.goes("SoftKeyboard"_s));
    }

    Operator m_panel;
};

QTEST_GUILESS_MAIN(WifiStoryTest)
#include "WifiStoryTest.moc"
