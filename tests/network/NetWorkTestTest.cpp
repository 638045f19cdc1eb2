#include "network/NetWorkTestItem.h"
#include "network/NetWorkTestRun.h"
#include "network/NetWorkTestUi.h"
#include "platform/cos_thread.h"
#include "platform/sim/Scenario.h"
#include "resources/Resources.h"
#include "tests/platform/posix/Counter.h"
#include "tests/support/Calls.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QMovie>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

#include <mutex>

namespace {

const QString ENGLISH = "/mnt/tarni/app/hmiapp/bin/NetWorkTest/NetWorkTest_en.json"_s;
const QString CHINESE = "/mnt/tarni/app/hmiapp/bin/NetWorkTest/NetWorkTest_ch.json"_s;
constexpr const char *CABLE_EN = R"({"EthConnect": {"ItemString": "Cable", "success": "in",
                                     "failure": "out", "Solution": "Plug it in"}})";
constexpr const char *CABLE_CH = R"({"EthConnect": {"ItemString": "网线", "Solution": "插好"}})";

// "6×" an item and its state, "8!-4" a reason, "9:600" a value.
QString reported(int item, int state, int value)
{
    static const QMap<int, QString> marks = {{1, "×"_s}, {2, "√"_s}, {3, "#"_s}};
    const QString mark = state > TEST_HEADING ? ":%1"_s.arg(value) : "!%1"_s.arg(state);
    return QString::number(item) + marks.value(state, mark);
}

// What a run reports, and its result at the end.
QString runOf(
    int load = 0, int status = 1, const std::function<bool()> &stopped = [] { return false; })
{
    QStringList told;
    const auto tell = [&](int item, int state, int value) {
        if (state != TEST_RUNNING)
            told << reported(item, state, value);
    };
    NetWorkTestRun::Input input{
        {"eth0", "wlan0", "usb0"}, load, [=] { return status; }, stopped, tell};
    const int result = NetWorkTestRun(std::move(input)).run();
    return told.join(QLatin1Char(' ')) + " = %1"_s.arg(result);
}

int ordered(const char *scenario, const char *key)
{
    return sim::loadScenario(scenario)["cloud"][key];
}

// What is told before a link, of it if nothing is wrong, and after it if it fails.
const QMap<QString, QStringList> LINKS = {
    {"eth"_s, {"0√ 3# "_s, "4√ 5√ 6√ 7√ 8√ 9:12"_s, " 10# 11√ 12√ 13√ 14:88 15√ 16√ 17:12 = 0"_s}},
    {"wifi"_s,
     {"0√ 3# 4√ 5√ 6× 10# "_s, "11√ 12√ 13√ 14:88 15√ 16√ 17:12"_s,
      " 18# 19√ 20√ 21:22 22√ 24√ 23√ 25√ 26:12 = 0"_s}},
    {"4g"_s,
     {"0√ 3# 4√ 5√ 6× 10# 11√ 12√ 13× 18# "_s, "19√ 20√ 21:22 22√ 24√ 23√ 25√ 26:12"_s,
      " = -2"_s}}};

// What a run asks that goes to the end of all three links.
const QStringList ALL_CALLS = R"(
netIsExist["eth0",false,5000] isNetUp["eth0",false,5000] checkEthCableLink["eth0",false,5000]
getIp["eth0",false,5000] netTping["eth0","192.168.1.1","192.168.1.50",false,1,false,50000]
getNetServerAddr[false,5000]
netIsExist["wlan0",false,5000] isNetUp["wlan0",false,5000] checkEthCableLink["wlan0",false,5000]
getSignal[false,5000] getIp["wlan0",false,5000]
netTping["wlan0","192.168.2.1","192.168.2.60",false,1,false,50000] getNetServerAddr[false,5000]
netIsExist["usb0",false,5000] isNetUp["usb0",false,5000] getCsqSignal[false,1000]
getCCID[false,1000] get4gDialUpMode[false,1000] checkEthCableLink["usb0",false,5000]
getNetServerAddr[false,5000] getIp["usb0",false,5000]
netTping["usb0","cloud.example.com","10.64.0.2",false,5,false,50000])"_s.simplified()
                                  .split(u' ');

} // namespace

class NetWorkTestTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        loadResources();
        COS::CCosThreadPool::init(0, 1, 1);
    }

    void init()
    {
        sim::panel().reset();
        m_root.clear();
        m_root.write(ENGLISH, CABLE_EN);
        m_root.write(CHINESE, CABLE_CH);
        m_dialog = std::make_unique<NetWorkTestUi>();
        m_dialog->setLanguage(1);
        m_dialog->setEthDevice("eth0");
        m_dialog->setWifiDevice("wlan0");
        m_dialog->slot_Util(0, 1, "Europe"_s);
    }

    void cleanup()
    {
        sim::panel().hurry();
        m_dialog.reset();
    }

    void cloudStates()
    {
        const QString ethernet = "3# 4√ 5√ 6√ 7√ 8√ 9:12 = 0"_s;
        for (const int loaded : {0, 7})
            QCOMPARE(runOf(loaded), "0√ "_s + ethernet);
        QCOMPARE(runOf(ordered("cloud-no-resource", "load")), "0!-1 "_s + ethernet);
        for (const int missing : {ordered("cloud-no-configuration", "load"),
                                  ordered("cloud-bad-configuration", "load"), -4})
            QCOMPARE(runOf(missing), "0× = -1"_s);

        const QString all = "0√ 3# 4√ 5√ 6√ 7√ 8!%1 10# 11√ 12√ 13√ 14:88 15√ 16!%1 "
                            "18# 19√ 20√ 21:22 22√ 24√ 23√ 25!%1 = -2"_s;
        int code = -5;
        for (const char *named :
             {"cloud-no-subscription", "cloud-no-server", "cloud-no-certificate", "cloud-no-time"})
            QCOMPARE(runOf(0, ordered(named, "status")), all.arg(code++));
        for (const int other : {ordered("cloud-connecting", "status"), -1, -6, 2})
            QCOMPARE(runOf(0, other), all.arg(-4));
        sim::panel().apply(sim::loadScenario("cloud-no-server-address"));
        QVERIFY(runOf().endsWith(" 25√ 26× = -2"_s));
    }

    void chains_data()
    {
        // a scenario, or its link and a call that fails | the item that differs
        rows({"eth-absent | 4×", "eth-off | 5×", "eth netT.isNetUp -2 | 5×", "eth-unplugged | 6×",
              "eth-no-address | 7×", "eth-gateway-silent | 7×", "eth-server-silent | 9:9999",
              "eth-slow | 9:600",
              // by Wi-Fi
              "wifi-absent | 11×", "wifi-off | 12×", "wifi-not-joined | 13×",
              "wifi-no-address | 15×", "wifi-gateway-silent | 15×", "wifi-server-silent | 17:9999",
              "wifi-slow | 17:600", "wifi-weak | 14:31",
              // by the modem
              "4g-absent | 19×", "4g-off | 20×", "4g-weak | 21:9",
              "4g-weak netT.getCsqSignal -2 | 21:-2", "4g-no-signal | 21:99", "4g-no-sim | 22×",
              "4g-not-attached | 24×", "4g-no-link | 23×", "4g-server-silent | 26:9999",
              "4g-slow | 26:600"});
    }

    void chains()
    {
        const QStringList trouble = cell(0).split(QLatin1Char(' '));
        if (trouble[0].contains(QLatin1Char('-')))
            sim::panel().apply(sim::loadScenario(trouble[0].toStdString()));
        if (trouble.size() > 1)
            sim::panel().fail(trouble[1].toStdString(), trouble[2].toInt(), 1);
        const QStringList link = LINKS[trouble[0].section(QLatin1Char('-'), 0, 0)];
        QStringList told = link[1].split(QLatin1Char(' '));
        const QString item = cell(1).section(QRegularExpression("\\D"_s), 0, 0);
        const int place = told.indexOf(QRegularExpression(item + "\\D.*"_s));
        told[place] = cell(1);
        if (cell(1).contains(QLatin1Char(':')) || cell(1) == "24×"_s) // does not stop the link
            QCOMPARE(runOf(), link[0] + told.join(QLatin1Char(' ')) + " = 0"_s);
        else
            QCOMPARE(runOf(), link[0] + told.mid(0, place + 1).join(QLatin1Char(' ')) + link[2]);
    }

    // All three links as far as they go, and what each call gets.
    void asks()
    {
        // So that Ethernet and Wi-Fi go as far as their last check, and fail there.
        const auto failTwice = [] { sim::panel().fail("netT.getNetServerAddr", -1, 2); };
        failTwice();
        QVERIFY(runOf().endsWith("26:12 = 0"_s));
        QCOMPARE(serviceCalls(), ALL_CALLS);

        // Stopped, it ends after the call under way, whichever that is.
        for (int last = 1; last < ALL_CALLS.size(); ++last) {
            sim::panel().clearFailures();
            failTwice();
            sim::panel().clearCalls();
            runOf(0, 1, [last] { return serviceCalls().size() >= last; });
            QCOMPARE(serviceCalls(), ALL_CALLS.mid(0, last));
        }
    }

    void prints()
    {
        for (const auto &[longest, shown] : {std::pair(500, 5), {501, 501}}) {
            sim::panel().set("net.ping",
                             {{"*", {{"min", 2}, {"avg", 5}, {"max", longest}, {"lost", 20}}}});
            QString told;
            QCOMPARE(printedBy([&] { told = runOf(); }),
                     "-----------------[0]\nnTestCloudRet = [0]\n"
                     "getNetServerAddr = [cloud.example.com]\n"
                     "nRet = [0] nMaxPacketTransTime=[" +
                         QByteArray::number(longest) +
                         "] nMinPacketTransTime = [2] "
                         "\tnAvgPacketTransTime = [5] nLostPackagePercentage = [20]\n");
            QVERIFY(told.endsWith("9:%1 = 0"_s.arg(shown)));
        }
    }

    void showsStates_data()
    {
        // item | state | values | mark | colour | title | result | advice
        rows({"6 | 0 | 0 | | 0, 170, 255 | T", "3 | 3 | 0 | | 0, 170, 255 | T",
              "6 | 1 | 0 | × | 255, 0, 0 | T | bad | do", "6 | 2 | 0 | √ | 0, 170, 255 | T | good",
              "0 | -1 | 0 | × | 255, 0, 0 | T | bad    Get resource file failed! | do",
              "8 | -2 | 0 | × | 255, 0, 0 | T:Europe | bad    Time synchronize failed! | do",
              "16 | -3 | 0 | × | 255, 0, 0 | T:Europe | bad    Certificate download failed! | do",
              "25 | -4 | 0 | × | 255, 0, 0 | T:Europe | bad    Server connection failed! | do",
              "8 | -5 | 0 | × | 255, 0, 0 | T:Europe | bad    Topic subscribe failed! | do",
              // signals
              "14 | 4 | 76 100 | Strong | 0, 170, 255 | T",
              "14 | 4 | 51 75 | Medium | 206, 206, 0 | T",
              "14 | 4 | -1 0 50 | Weak | 255, 0, 0 | T | | do",
              "21 | 4 | 25 31 | Strong | 0, 170, 255 | T",
              "21 | 4 | 17 24 | Medium | 206, 206, 0 | T",
              "21 | 4 | -1 16 99 | Weak | 255, 0, 0 | T | | do", // 99: not known
              // delays
              "9 | 5 | 99 | 99ms | 0, 170, 255 | T", "17 | 5 | 100 | 100ms | 206, 206, 0 | T",
              "26 | 5 | 499 | 499ms | 206, 206, 0 | T",
              "9 | 5 | 500 | 500ms | 255, 0, 0 | T | | do",
              "9 | 5 | 9999 | 9999ms | 255, 0, 0 | T | bad | do"});
    }

    void showsStates()
    {
        QMovie movie;
        NetWorkTestItem row(number(0), &movie, nullptr);
        row.setTexts({"T"_s, "good"_s, "bad"_s, "do"_s}, "Europe"_s);
        const auto label = [&row](const char *name) {
            return row.findChild<QLabel *>(QLatin1String(name));
        };
        for (const QString &value : cell(2).split(QLatin1Char(' '))) {
            row.setState(number(1), value.toInt());
            QCOMPARE(label("lab_state")->movie() != nullptr, number(1) == TEST_RUNNING);
            QCOMPARE(label("lab_state")->text(), cell(3));
            QCOMPARE(label("lab_state")->styleSheet(), "color: rgb(%1);"_s.arg(cell(4)));
            QCOMPARE(label("lab_title")->text(), cell(5));
            QCOMPARE(label("lab_result")->text(), cellOrEmpty(6));
            QCOMPARE(label("lab_solution")->text(), cellOrEmpty(7));
        }
    }

    // In the other language meanwhile.
    void runsOnceAndCanBeClosed()
    {
        sim::panel().set("net.cable.eth0", -1);
        sim::panel().delay("netT.checkEthCableLink", 4500); // until it is hurried
        begin();
        QCOMPARE(status(), "Diagnosing"_s);
        QTRY_COMPARE(text("EthConnect", "lab_title"), "Cable"_s);
        QVERIFY(!button()->isEnabled());
        m_dialog->findChild<QPushButton *>("btn_close"_s)->click();
        QVERIFY(!m_dialog->isVisible());
        m_dialog->setLanguage(0);
        QCOMPARE(text("EthConnect", "lab_title"), "网线"_s);
        sim::panel().hurry();
        QTRY_COMPARE(status(), "The network connection is successful."_s);
        QVERIFY(button()->isEnabled());
        QCOMPARE(text("WifiNetDelay", "lab_state"), "12ms"_s);
        QCOMPARE(text("EthConnect", "lab_solution"), "插好"_s);
        m_dialog->setLanguage(1);
        QCOMPARE(text("EthConnect", "lab_solution"), "Plug it in"_s);
        QCOMPARE(text("EthConnect", "lab_result"), "out"_s);
        m_dialog->setLanguage(2); // no file: the key is all that is known
        QCOMPARE(text("EthConnect", "lab_title"), "EthConnect"_s);
        QCOMPARE(text("EthConnect", "lab_solution"), QString());

        m_dialog->slot_Util(-1, -1, QString());
        begin(); // a run clears what the one before has left
        QTRY_VERIFY(button()->isEnabled());
        QCOMPARE(status(),
                 "The cloud settings are missing or damaged. The network was not checked."_s);
        QCOMPARE(m_dialog->findChildren<NetWorkTestItem *>().size(), 1);
    }

    void keepsTheRowThatMattersInSight()
    {
        sim::panel().set("lcd.width", 480);
        sim::panel().set("lcd.height", 272);
        sim::panel().set("net.cable.eth0", -1);
        m_dialog->setFixedSize(336, 217);
        sim::panel().delay("netT.netTping", 300);
        begin();
        QTRY_VERIFY(topInSight("WifiHotsGateaway") > 0); // the newest
        QTRY_VERIFY(button()->isEnabled());
        QTRY_VERIFY(topInSight("EthConnect") >= 0); // the first that failed

        auto *bar = m_dialog->findChild<QScrollArea *>("area_rows"_s)->verticalScrollBar();
        button()->click();
        QTRY_VERIFY(m_dialog->findChild<NetWorkTestItem *>("WifiNetDelay"_s) == nullptr); // cleared
        QTRY_VERIFY(topInSight("WifiHotsGateaway") > 0 && bar->value() > 0);
        bar->triggerAction(QScrollBar::SliderToMinimum); // the operator reads on from the first row
        QTRY_VERIFY(button()->isEnabled());
        QTest::qWait(0); // until the last rows have found their places
        QCOMPARE(bar->value(), 0);

        button()->click();
        m_dialog->hide();
        QTRY_VERIFY(button()->isEnabled());
        m_dialog->show();
        QTRY_VERIFY(topInSight("EthConnect") >= 0);
    }

    void waitsForTheFirstWordOfTheCloud()
    {
        m_dialog = std::make_unique<NetWorkTestUi>(); // as soon after the program's start
        m_dialog->setEthDevice("eth0");
        bool begun = false;
        connect(m_dialog.get(), &NetWorkTestUi::sgl_BtnCheck, this, [&begun] { begun = true; });
        begin();
        QTRY_VERIFY(begun);
        m_dialog->slot_Util(0, 1, QString());
        QTRY_COMPARE(status(), "The network connection is successful."_s);
    }

    void saysThatThePoolIsFull()
    {
        std::mutex held;
        std::unique_lock<std::mutex> hold(held);
        while (COS::CCosThreadPool::submit(
                   [&] { const std::lock_guard<std::mutex> until(held); }) >= 0) {
        }
        begin();
        QCOMPARE(status(), "The panel is busy. Please try again."_s);
        QVERIFY(button()->isEnabled());
        hold.unlock();
        QTRY_VERIFY((button()->click(), status() == "Diagnosing"_s));
    }

    void mayGoWhenThePoolDropsItsRun()
    {
        Counter running, gate;
        while (COS::CCosThreadPool::submit([&] { running.add(), gate.reaches(1); }) != 0)
            QTest::qWait(1); // the run before is ending
        QVERIFY(running.reaches(1));
        begin();
        QVERIFY(!COS::CCosThreadPool::destory(0));
        m_dialog.reset();
        gate.add();
        QVERIFY(COS::CCosThreadPool::destory());
        QCOMPARE(COS::CCosThreadPool::init(0, 1, 1), 0);
    }

    void canGoInTheMiddle()
    {
        sim::panel().delay("netT.isNetUp", 1500);
        begin();
        QTRY_COMPARE(text("EthIdentified", "lab_state"), "√"_s);
        m_dialog.reset();
        QVERIFY(serviceCalls().last().startsWith("isNetUp"_s));
    }

private:
    QString text(const char *row, const char *label)
    {
        const auto *found = m_dialog->findChild<NetWorkTestItem *>(QLatin1String(row));
        const auto *shown = found ? found->findChild<QLabel *>(QLatin1String(label)) : nullptr;
        return shown == nullptr || shown->isHidden() ? QString() : shown->text();
    }

    // Where a row begins in what is seen of the list; -1 if it is not wholly there.
    int topInSight(const char *row)
    {
        const auto *found = m_dialog->findChild<NetWorkTestItem *>(QLatin1String(row));
        const auto *view = m_dialog->findChild<QScrollArea *>("area_rows"_s)->viewport();
        const QRect place = found ? QRect(found->mapTo(view, {}), found->size()) : QRect();
        return view->rect().contains(place) ? place.top() : -1;
    }

    void begin()
    {
        m_dialog->show();
        button()->click();
    }

    QPushButton *button() { return m_dialog->findChild<QPushButton *>("btn_StartDiag"_s); }
    QString status() { return m_dialog->findChild<QLabel *>("lab_status"_s)->text(); }

    PanelRoot m_root;
    std::unique_ptr<NetWorkTestUi> m_dialog;
};

QTEST_MAIN(NetWorkTestTest)
#include "NetWorkTestTest.moc"
