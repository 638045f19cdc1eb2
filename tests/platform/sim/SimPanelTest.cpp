#include "platform/board.h"
#include "platform/net.h"
#include "platform/runtime.h"
#include "platform/sim/Panel.h"

#include <QElapsedTimer>
#include <QtTest>

#include <pthread.h>
#include <thread>

using sim::Json;
using sim::panel;

namespace {

struct Plugged
{
    std::mutex mutex;
    std::vector<std::string> events;

    std::vector<std::string> seen()
    {
        const std::lock_guard lock(mutex);
        return events;
    }

    template <char SIGN>
    static int add(const PLATFORM::tagDEV_INFO_T &info, void *context)
    {
        auto *self = static_cast<Plugged *>(context);
        const std::lock_guard lock(self->mutex);
        self->events.push_back(SIGN + std::to_string(info.nType) + info.sMountPath);
        return 0;
    }
};

} // namespace

class SimPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }

    void failsAsOftenAsOrdered()
    {
        panel().fail("PLATFORM.CPlatLcd.setBrightness", -7, 2);
        QCOMPARE(PLATFORM::CPlatLcd::setBrightness(10), -7);
        QCOMPARE(PLATFORM::CPlatLcd::setBrightness(10), -7);
        QCOMPARE(panel().get("lcd.brightness").get<int>(), 100);
        QCOMPARE(PLATFORM::CPlatLcd::setBrightness(10), 0);
        panel().fail("Beep", -3);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(Beep(1), -3);
        panel().clearFailures();
        QCOMPARE(Beep(1), 0);
    }

    void refusesOrders()
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

    void delayedCallTakesItsTime()
    {
        struct
        {
            int delay, result;
            const char *priority;
        } const cases[] = {{60000, netT::ERR_TIMEOUT, "ETH"}, {60, 0, "WIFI"}};
        for (const auto &[delay, result, priority] : cases) {
            panel().delay("netT.setDevPriority", delay);
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(netT::setDevPriority("WIFI", false, 200), result);
            QVERIFY(timer.elapsed() >= std::min(delay, 200));
            QVERIFY(panel().get("net.priority") == priority);
        }
    }

    void panelAnswersDuringADelayedCall()
    {
        panel().delay("Beep", 60000);
        std::thread slow([] { Beep(5); });
        PLATFORM::CPlatLcd::setBrightness(50);
        panel().hurry();
        slow.join();
        QVERIFY(panel().calls()[0]["op"] == "PLATFORM.CPlatLcd.setBrightness");
        QVERIFY(panel().calls()[1]["op"] == "Beep");
    }

    void logsLikeCallsCheaply()
    {
        const int calls = int(sim::CallLog::limit) + 10;
        PLATFORM::CPlatLcd::setBrightness(50);
        for (int i = 0; i < calls; ++i)
            PLATFORM::CPlatBuzzer::runBeep();
        const Json log = panel().calls();
        QCOMPARE(log.size(), std::size_t(sim::CallLog::limit));
        QVERIFY(log.front()["op"] == "PLATFORM.CPlatBuzzer.runBeep");
        QVERIFY(log.back()["args"] == Json::array());
    }

    void logNamesThreads()
    {
        const std::pair<const char *, const char *> labels[] = {
            {"timer", "timer"}, {"media", "media"}, {"net", "net"}, {"pool-1", "worker"}};
        Beep(1);
        QVERIFY(panel().calls().back()["thread"] == "gui");
        for (const auto &[name, label] : labels) {
            std::thread([thread = name] {
                pthread_setname_np(pthread_self(), thread);
                Beep(1);
            }).join();
            QVERIFY2(panel().calls().back()["thread"] == label, name);
        }
    }

    void clicksArePlayedByTheBuzzerTask()
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

    // And what is plugged in by then reaches them too, but nothing that has been taken out.
    void hotPlugReachesRegistrations()
    {
        const auto listen = [](Plugged &plugged) {
            const PLATFORM::MediaCallbacks callbacks{Plugged::add<'+'>, Plugged::add<'-'>};
            QCOMPARE(PLATFORM::CPlatMedia::addDev({PLATFORM::DEV_UDISK}, callbacks, &plugged), 0);
        };
        Plugged plugged;
        Plugged later;
        panel().media().insert(201, "/forgotten");
        panel().reset();
        panel().media().insert(201, "/first");
        panel().media().insert(999, "/unknown");
        listen(plugged);
        panel().media().insert(777, "/late");
        panel().media().remove(201, "/first");
        listen(later);
        panel().media().insert(201, "/last");
        const std::vector<std::string> expected{"+201/first", "+777/late", "-201/first",
                                                "+201/last"};
        QTRY_COMPARE(plugged.seen(), expected);
        QTRY_COMPARE(later.seen(), std::vector<std::string>{"+201/last"});
        panel().reset();
    }

    // The program's callback may wait for the thread that plugs the next device in.
    void hotPlugThreadMayBeBlocked()
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

    void wordsAreAllOrNone()
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
};

QTEST_GUILESS_MAIN(SimPanelTest)
#include "SimPanelTest.moc"
