#include "network/WifiPara.h"

#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QtTest>

using sim::panel;

class WifiParaTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init();
    void fills_data();
    void fills();
    void lookOfTheDeviceIsTheLookAlone();
    void presses_data();
    void presses();
    void refusedFieldsOpenNoKeyboard();
    void framePaintsItself();

private:
    QLineEdit *field(const char *name) const
    {
        return m_dialog->findChild<QLineEdit *>(QString::fromLatin1(name));
    }
    QString octets(const char *base) const;
    bool underlined() const
    {
        return m_dialog->findChild<QWidget *>("widget_EthIndetail"_s)
            ->styleSheet()
            .contains("border-bottom-color: #C4C4C3"_s);
    }
    void press(const char *name)
    {
        QTest::mouseClick(m_dialog->findChild<QWidget *>(QString::fromLatin1(name)),
                          Qt::LeftButton);
    }

    QWidget m_page;
    std::unique_ptr<WifiPara> m_dialog;
};

void WifiParaTest::init()
{
    panel().reset();
    m_page.resize(600, 400);
    m_dialog = std::make_unique<WifiPara>(&m_page);
    m_dialog->slot_DHCP(false);
    m_dialog->slot_IpPara("192.168.2.60", "255.255.255.0", "192.168.2.1");
    m_dialog->slot_Dns("8.8.8.8", "9.9.9.9");
    m_dialog->setDevName("wlan0");
    m_dialog->show();
    panel().clearCalls();
}

QString WifiParaTest::octets(const char *base) const
{
    QStringList parts;
    for (int i = 1; i <= 4; ++i)
        parts << field((QByteArray(base) + QByteArray::number(i)).constData())->text();
    return parts.join(QLatin1Char('|'));
}

void WifiParaTest::fills_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("fields");
    QTest::newRow("four parts") << QByteArray("10.0.0.7") << "10|0|0|7"_s;
    QTest::newRow("three") << QByteArray("10.0.7") << "|||"_s;
    QTest::newRow("five") << QByteArray("10.0.0.7.1") << "|||"_s;
    QTest::newRow("none") << QByteArray() << "|||"_s;
}

void WifiParaTest::fills()
{
    QFETCH(QByteArray, text);
    field("line_Dns1_1")->setText("7"_s); // typed, not sent: the other slot's groups stay
    m_dialog->slot_IpPara("1.2.3.4", text.toStdString(), "1.2.3.1");
    QTEST(octets("line_Mask"), "fields");
    QCOMPARE(octets("line_Ip") + octets("line_Dns1_"), "1|2|3|47|8|8|8"_s);
    m_dialog->slot_Dns(text.toStdString(), "1.1.1.1");
    QTEST(octets("line_Dns1_"), "fields");
    m_dialog->slot_Mac("<b>mac</b>");
    const auto *mac = m_dialog->findChild<QLabel *>("lab_EthMac"_s);
    QCOMPARE(mac->text(), "<b>mac</b>"_s);
    QCOMPARE(mac->textFormat(), Qt::PlainText);
}

void WifiParaTest::lookOfTheDeviceIsTheLookAlone()
{
    // The device uses DHCP, which the page has not told the dialog.
    QVERIFY(!underlined());
    QVERIFY(field("line_Ip1")->isEnabled());
    QVERIFY(m_dialog->findChild<QRadioButton *>("radio_Static"_s)->isChecked());
    panel().fail("netT.isNetDeviceDhcp", 1);
    m_dialog->slot_DHCP(true);
    m_dialog->setDevName("wlan0");
    QVERIFY(underlined());
    QVERIFY(!field("line_Ip1")->isEnabled());
    QVERIFY(m_dialog->findChild<QRadioButton *>("radio_Dhcp"_s)->isChecked());
}

void WifiParaTest::presses_data()
{
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QByteArray>("ok");
    QTest::addColumn<QByteArray>("refused");
    const auto row = [](const char *pressed, const char *operation, const char *sent,
                        const char *ok, const char *refused) {
        QTest::newRow(operation) << QString::fromLatin1(pressed) << QString::fromLatin1(operation)
                                 << QString::fromLatin1(sent) << QByteArray(ok)
                                 << QByteArray(refused);
    };
    row("radio_Dhcp", "netT.startDhcp", R"(["wlan0",true,5000])", "startDhcp [wlan0]  OK \n",
        "startDhcp [wlan0]  Err \n");
    row("radio_Static", "netT.stopDhcp", R"(["wlan0",true,5000])", "stopDhcp [wlan0]  OK \n",
        "stopDhcp [wlan0]  Err \n");
    row("line_Ip4", "netT.setIp",
        R"(["wlan0","192.168.2.7","255.255.255.0","192.168.2.1",true,5000])", "setIp [wlan0] ok\n",
        "setIp [wlan0] error\n");
    row("line_Dns2_1", "netT.setDns", R"(["wlan0","8.8.8.8","7.9.9.9",false,5000])",
        "setDns [wlan0] ok\n", "setDns [wlan0] error\n");
}

void WifiParaTest::presses()
{
    QFETCH(QString, pressed);
    QFETCH(QString, operation);
    QFETCH(QString, sent);
    for (const char *outcome : {"ok", "refused"}) {
        init();
        if (qstrcmp(outcome, "refused") == 0)
            panel().fail(operation.toStdString(), -1);
        if (pressed.startsWith("line_"_s))
            typeOnKeyboard("7\n"_s);
        const QByteArray printed = printedBy([&] { press(qPrintable(pressed)); });
        QTEST(printed, outcome);
        std::string args;
        for (const auto &call : panel().calls()) {
            if (call.at("op") == operation.toStdString())
                args = call.at("args").dump();
        }
        QCOMPARE(QString::fromStdString(args), sent);
    }
    if (pressed.startsWith("radio_"_s)) {
        QCOMPARE(field("line_Ip1")->isEnabled(), pressed == "radio_Static"_s);
        QCOMPARE(underlined(), pressed == "radio_Static"_s);
    }
}

void WifiParaTest::refusedFieldsOpenNoKeyboard()
{
    m_dialog->slot_DHCP(true);
    press("line_Ip4"); // would not return from an open keyboard
    // Refused, or closed, while it is typed.
    for (const auto &end : {std::function<void()>([this] { m_dialog->slot_DHCP(true); }),
                            std::function<void()>([this] { m_dialog->hide(); })}) {
        whenOpen("SoftKeyboard", [&end](const QWidget *) {
            end();
            return true;
        });
        typeOnKeyboard("7\n"_s);
        m_dialog->slot_DHCP(false);
        press("line_Ip4");
        QCOMPARE(octets("line_Ip"), "192|168|2|60"_s);
    }
    for (const auto &call : panel().calls())
        QVERIFY(call.at("op") != "netT.setIp");
    m_dialog->show();
    press("pushButton_2");
    QVERIFY(!m_dialog->isVisible());
}

void WifiParaTest::framePaintsItself()
{
    const QImage image = m_dialog->grab().toImage();
    const int middle = image.height() / 2;
    QCOMPARE(image.pixelColor(14, middle), QColor(248, 248, 248));
    int last = 256; // darker and darker towards the inside
    for (int x = 1; x < 10; ++x) {
        const int grey = image.pixelColor(x, middle).red();
        QVERIFY2(grey < last || grey == 255, qPrintable(QString::number(x)));
        last = grey;
    }
    QVERIFY(last < 150);
}

QTEST_MAIN(WifiParaTest)
#include "WifiParaTest.moc"
