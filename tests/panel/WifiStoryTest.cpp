#include "tests/support/Text.h"
#include "tools/PanelProcess.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

constexpr int WIFI_TAB = 1;
constexpr int KEY_PAUSE_MS = 170; // the keyboard drops keys that follow too soon

} // namespace

// An operator who joins one network after the other, by touch alone.
class WifiStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void joinedAtStart();
    void openNetwork();
    void wrongPasswordThenRight();
    void linkLostAndBack();
    void end();

private:
    QString onTop(const char *label, const char *property = "text")
    {
        return m_panel.widget(QLatin1String(label), QLatin1String(property)).toString();
    }
    bool isJoined(const QString &network);
    bool touchNetwork(const QString &network);
    void type(const QString &letters, const QString &digits);

    PanelProcess m_panel;
};

void WifiStoryTest::initTestCase()
{
    QVERIFY(m_panel.start());
    QVERIFY(m_panel.press("btn_Net"_s));
    QVERIFY(m_panel.press("tab_Net"_s, WIFI_TAB));
}

bool WifiStoryTest::isJoined(const QString &network)
{
    return PanelProcess::wait([&] {
        return m_panel.isVisible("wid_wifiConnect"_s) && onTop("lab_ssid") == network &&
               onTop("lab_Ok", "style").contains("tick.png"_s) &&
               onTop("lab_ip") == "192.168.2.60"_s;
    });
}

bool WifiStoryTest::touchNetwork(const QString &network)
{
    int row = -1;
    return PanelProcess::wait([&] {
               const QJsonArray rows = m_panel.widget("list_Wifi"_s, "items"_s).toArray();
               for (row = rows.size() - 1; row >= 0 && rows[row].toString() != network;)
                   --row;
               return row >= 0;
           }) &&
           m_panel.press("list_Wifi"_s, row);
}

void WifiStoryTest::type(const QString &letters, const QString &digits)
{
    QVERIFY(PanelProcess::wait([this] { return m_panel.isVisible("SoftKeyboard"_s); }));
    QStringList keys;
    for (const QChar letter : letters)
        keys += "btn_c_"_s + letter;
    keys += "btn_c_123"_s;
    for (const QChar digit : digits)
        keys += "btn_n_"_s + digit;
    keys += "btn_n_enter"_s;
    for (const QString &key : qAsConst(keys)) {
        QTest::qSleep(KEY_PAUSE_MS);
        QVERIFY2(m_panel.press(key), qPrintable(key));
    }
    QVERIFY(PanelProcess::wait([this] { return !m_panel.isVisible("SoftKeyboard"_s); }));
}

void WifiStoryTest::joinedAtStart()
{
    QVERIFY(isJoined("Workshop"_s));
    QVERIFY(PanelProcess::wait([this] {
        return m_panel.widget("list_Wifi"_s, "items"_s).toArray() ==
               QJsonArray({"Office"_s, "Guests"_s, "Warehouse"_s});
    }));
}

void WifiStoryTest::openNetwork()
{
    QVERIFY(touchNetwork("Guests"_s));
    QVERIFY(isJoined("Guests"_s));
    QCOMPARE(m_panel.get("wifi.user.ssid"_s).toString(), "Guests"_s);
}

void WifiStoryTest::wrongPasswordThenRight()
{
    QVERIFY(touchNetwork("Office"_s));
    QVERIFY(PanelProcess::wait([this] { return onTop("lab_Field") == "Office"_s; }));
    type("xoffice"_s, "12"_s); // the very first key of a process has no effect
    QVERIFY(PanelProcess::wait([this] { return m_panel.isVisible("MessageBox"_s); }));
    QVERIFY(onTop("label").contains("密码错误"_s));
    QVERIFY(!m_panel.isVisible("wid_wifiConnect"_s));
    QVERIFY(m_panel.press("btn_Ok"_s));
    QVERIFY(PanelProcess::wait([this] { return !m_panel.isVisible("MessageBox"_s); }));
    QVERIFY(touchNetwork("Office"_s));
    type("office"_s, "123"_s);
    QVERIFY(isJoined("Office"_s));
    QCOMPARE(m_panel.get("wifi.user.password"_s).toString(), "office123"_s);
}

void WifiStoryTest::linkLostAndBack()
{
    const QJsonArray inRange = m_panel.get("wifi.aps"_s).toArray();
    QVERIFY(m_panel.set("wifi.aps"_s, "[]"));
    QVERIFY(PanelProcess::wait([this] { return !m_panel.isVisible("wid_wifiConnect"_s); }));
    QVERIFY(m_panel.set("wifi.aps"_s, QJsonDocument(inRange).toJson()));
    QVERIFY(isJoined("Office"_s));
}

void WifiStoryTest::end()
{
    QVERIFY(m_panel.press("wid_wifiConnect"_s));
    QVERIFY(PanelProcess::wait([this] { return m_panel.isVisible("WifiPara"_s); }));
    m_panel.ask({"quit"_s}); // with a dialog open
    QCOMPARE(m_panel.waitForEnd(), 0);
}

QTEST_GUILESS_MAIN(WifiStoryTest)
#include "WifiStoryTest.moc"
