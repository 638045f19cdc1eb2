#include "platform/board.h"
#include "platform/cos_process.h"
#include "platform/cos_time.h"
#include "platform/machine.h"
#include "platform/net.h"
#include "platform/runtime.h"
#include "platform/services.h"
#include "platform/sim/Panel.h"

#include <QElapsedTimer>
#include <QtTest>

#include <pthread.h>
#include <thread>

using sim::Json;
using sim::panel;

namespace {

std::vector<std::string> lastOps()
{
    std::vector<std::string> ops;
    for (const Json &call : panel().calls())
        ops.push_back(call["op"]);
    return ops;
}

struct Plugged
{
    std::mutex mutex;
    std::vector<std::string> events;

    std::vector<std::string> seen()
    {
        const std::lock_guard lock(mutex);
        return events;
    }

    void add(const char *what, const PLATFORM::tagDEV_INFO_T &info)
    {
        const std::lock_guard lock(mutex);
        events.push_back(what + std::to_string(info.nType) + info.sMountPath);
    }
};

int added(const PLATFORM::tagDEV_INFO_T &info, void *context)
{
    static_cast<Plugged *>(context)->add("+", info);
    return 0;
}

int removed(const PLATFORM::tagDEV_INFO_T &info, void *context)
{
    static_cast<Plugged *>(context)->add("-", info);
    return 0;
}

} // namespace

class SimPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }

    void failsAsOftenAsOrdered();
    void refusesOrders();
    void delayedCallTakesItsTime_data();
    void delayedCallTakesItsTime();
    void panelAnswersDuringADelayedCall();
    void logsLikeCallsCheaply();
    void logNamesThreads_data();
    void logNamesThreads();
    void clicksArePlayedByTheBuzzerTask();
    void hotPlugReachesRegistrations();
    void hotPlugThreadMayBeBlocked();
    void wordsAreAllOrNone();
    void clockIsSet();
    void missingMachineFactsFail();
    void digestIsMd5();
};

void SimPanelTest::failsAsOftenAsOrdered()
{
    panel().fail("PLATFORM.CPlatLcd.setBrightness", -7, 2);
    QCOMPARE(PLATFORM::CPlatLcd::setBrightness(10), -7);
    QCOMPARE(PLATFORM::CPlatLcd::setBrightness(10), -7);
    QCOMPARE(panel().get("lcd.brightness").get<int>(), 80);
    QCOMPARE(PLATFORM::CPlatLcd::setBrightness(10), 0);
    panel().fail("Beep", -3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(Beep(1), -3);
    panel().clearFailures();
    QCOMPARE(Beep(1), 0);
}

void SimPanelTest::refusesOrders()
{
    QVERIFY_EXCEPTION_THROWN(panel().fail("netT.setip", -1), sim::BadRequest);
    QVERIFY_EXCEPTION_THROWN(panel().fail("netT.setIp", -1, 0), sim::BadRequest);
    QVERIFY_EXCEPTION_THROWN(panel().delay("netT.setIp", -1), sim::BadRequest);
    for (const char *scenario :
         {R"({"fail": [["Beep"]]})", R"({"fail": 5})", R"({"delay": [[1, 2]]})",
          R"({"fail": [["Beep", "x"]]})", R"({"tail": []})", "[]"})
        QVERIFY_EXCEPTION_THROWN(panel().apply(Json::parse(scenario)), sim::BadRequest);
    QCOMPARE(Beep(1), 0);
}

void SimPanelTest::delayedCallTakesItsTime_data()
{
    QTest::addColumn<int>("delay");
    QTest::addColumn<int>("result");
    QTest::newRow("in time") << 60 << 0;
    QTest::newRow("too late") << 60000 << int(netT::ERR_TIMEOUT);
}

void SimPanelTest::delayedCallTakesItsTime()
{
    QFETCH(int, delay);
    QFETCH(int, result);
    panel().delay("netT.setDevPriority", delay);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(netT::setDevPriority("WIFI", false, 200), result);
    QVERIFY(timer.elapsed() >= std::min(delay, 200));
    QCOMPARE(panel().get("net.priority").get<std::string>(),
             std::string(result == 0 ? "WIFI" : "ETH"));
}

void SimPanelTest::panelAnswersDuringADelayedCall()
{
    panel().delay("Beep", 300);
    std::atomic<bool> done{false};
    std::thread slow([&] {
        Beep(5);
        done = true;
    });
    PLATFORM::CPlatLcd::setBrightness(50);
    QVERIFY(!done);
    slow.join();
    QCOMPARE(lastOps(), (std::vector<std::string>{"PLATFORM.CPlatLcd.setBrightness", "Beep"}));
}

void SimPanelTest::logsLikeCallsCheaply()
{
    const int calls = int(sim::CallLog::limit) + 10;
    PLATFORM::CPlatLcd::setBrightness(50);
    for (int i = 0; i < calls; ++i)
        PLATFORM::CPlatBuzzer::runBeep();
    const Json log = panel().calls();
    QCOMPARE(log.size(), std::size_t(sim::CallLog::limit));
    QVERIFY(log.front()["op"] == "PLATFORM.CPlatBuzzer.runBeep");
    QVERIFY(log.back()["args"] == Json::array());
    Beep(1);
    Beep(2);
    QVERIFY(panel().calls().back()["args"] == Json::array({2}));
}

void SimPanelTest::logNamesThreads_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("label");
    for (const char *name : {"timer", "media", "net"})
        QTest::newRow(name) << QByteArray(name) << QByteArray(name);
    QTest::newRow("other") << QByteArray("pool-1") << QByteArray("worker");
}

void SimPanelTest::logNamesThreads()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, label);
    Beep(1);
    std::thread([&] {
        pthread_setname_np(pthread_self(), name.data());
        Beep(1);
    }).join();
    const Json calls = panel().calls();
    QVERIFY(calls[0]["thread"] == "gui");
    QVERIFY(calls[1]["thread"] == label.data());
}

void SimPanelTest::clicksArePlayedByTheBuzzerTask()
{
    PLATFORM::CPlatBuzzer::setBeepTime(40);
    PLATFORM::CPlatBuzzer::open();
    PLATFORM::CPlatBuzzer::open();
    QVERIFY(panel().get("buzzer.beeps") == Json::array());
    for (int i = 0; i < 3; ++i)
        PLATFORM::CPlatBuzzer::runBeep();
    QVERIFY(panel().get("buzzer.beeps") == Json::array({40, 40}));
    PLATFORM::CPlatBuzzer::setEnable(0);
    PLATFORM::CPlatBuzzer::open();
    PLATFORM::CPlatBuzzer::runBeep();
    QVERIFY(panel().get("buzzer.beeps") == Json::array({40, 40}));
    QCOMPARE(panel().get("buzzer.opens").get<int>(), 3);
}

void SimPanelTest::hotPlugReachesRegistrations()
{
    Plugged plugged;
    panel().media().insert(201, "/first");
    panel().media().insert(999, "/unknown");
    QCOMPARE(PLATFORM::CPlatMedia::addDev({PLATFORM::DEV_UDISK}, {added, removed}, &plugged), 0);
    panel().media().insert(777, "/late");
    panel().media().remove(201, "/first");
    const std::vector<std::string> expected{"+201/first", "+777/late", "-201/first"};
    QTRY_COMPARE(plugged.seen(), expected);
    panel().reset();
}

// The program's callback may wait for the thread that plugs the next device in.
void SimPanelTest::hotPlugThreadMayBeBlocked()
{
    std::mutex gate;
    const auto wait = [](const PLATFORM::tagDEV_INFO_T &, void *context) {
        const std::lock_guard lock(*static_cast<std::mutex *>(context));
        return 0;
    };
    PLATFORM::CPlatMedia::addDev({PLATFORM::DEV_UDISK}, {wait, wait}, &gate);
    gate.lock();
    panel().media().insert(201, "/a");
    panel().media().remove(201, "/a");
    QCOMPARE(Beep(1), 0);
    gate.unlock();
    panel().reset();
}

void SimPanelTest::wordsAreAllOrNone()
{
    unsigned short words[] = {1, 2, 3};
    QVERIFY(backstage_AddrWrite(10613, words, 3) < 0);
    QCOMPARE(panel().get("words.10613").get<int>(), 3);
    QVERIFY(backstage_AddrRead(10613, words, 3) < 0);
    QCOMPARE(words[0], static_cast<unsigned short>(1));
    panel().set("words.10614", nullptr);
    QVERIFY(backstage_AddrRead(10614, words, 1) < 0);
    QCOMPARE(backstage_AddrWrite(10613, words, 2), 0);
    QCOMPARE(backstage_AddrRead(10614, words, 1), 0);
    QCOMPARE(words[0], static_cast<unsigned short>(2));
}

void SimPanelTest::clockIsSet()
{
    const unsigned short words[] = {2031, 2, 3, 4, 5, 6};
    QCOMPARE(backstage_AddrWrite(28, words, 6), 0);
    COS::SYS_TIME_T time;
    COS::CosTime::GetSysLocalTime(time);
    QCOMPARE(time.year, 2031);
    QCOMPARE(time.minute, 5);
    time.year = 2020;
    QCOMPARE(COS::CosTime::SetSysLocalTime(time), 0);
    QCOMPARE(COS::CosTime::TimeStampToZoneTime(COS::CosTime::GetTimeStamp()).year, 2020);
    panel().set("clock.allowSet", 0);
    QVERIFY(backstage_AddrWrite(28, words, 6) < 0);
}

void SimPanelTest::missingMachineFactsFail()
{
    for (const char *field :
         {"hmiType", "sn", "mac", "deviceId", "product", "remote", "cpuId", "boardModel"})
        panel().set(std::string("machine.") + field, nullptr);
    const KVCORE::TMachine machine;
    std::string text("kept");
    QCOMPARE(machine.GetHMIType(text), 0);
    QCOMPARE(machine.GetSN(text), 0);
    QCOMPARE(machine.GetMac(text), 0);
    QCOMPARE(machine.GetProduct(text), 0);
    QVERIFY(machine.getDeviceId(text) < 0);
    QCOMPARE(machine.enableRemote(), 0);
    QVERIFY(PLATFORM::CPlatCpu::getCpuId(text) < 0);
    QVERIFY(PLATFORM::CPlatBoard::getKVxxx(text) < 0);
    QCOMPARE(text, std::string("kept"));
}

void SimPanelTest::digestIsMd5()
{
    std::string digest;
    QCOMPARE(cbl::md5String("abc", digest), 0);
    QCOMPARE(digest, std::string("900150983cd24fb0d6963f7d28e17f72")); // RFC 1321, A.5
}

QTEST_GUILESS_MAIN(SimPanelTest)
#include "SimPanelTest.moc"
