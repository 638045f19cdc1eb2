#include "platform/board.h"
#include "platform/net.h"
#include "platform/plc.h"
#include "platform/runtime.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QElapsedTimer>

#include <pthread.h>
#include <sys/stat.h>
#include <thread>

using sim::Json;
using sim::panel;

namespace {

// The test holds it while it plugs: a callback may have to wait for whoever plugs the next device.
std::mutex gate;

// Appends "+201/path" or "-201/path" to the events of a registration.
template <char SIGN>
int note(const PLATFORM::tagDEV_INFO_T &info, void *events)
{
    const std::lock_guard lock(gate);
    const std::string event = SIGN + std::to_string(info.nType) + info.sMountPath;
    *static_cast<QStringList *>(events) += QString::fromStdString(event);
    return 0;
}

} // namespace

class SimPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }

    void failsAsOftenAsOrdered()
    {
        panel().fail("Beep", -7, 2);
        QVERIFY(Beep(1) == -7 && Beep(1) == -7 && Beep(1) == 0);
        QCOMPARE(panel().get("buzzer.beeps").size(), std::size_t(1));
        panel().fail("Beep", -3);
        QVERIFY(Beep(1) == -3 && Beep(1) == -3);
        panel().clearFailures();
        QCOMPARE(Beep(1), 0);
    }

    void refusesOrders()
    {
        for (const char *scenario :
             {R"({"fail": [["netT.setip", -1]]})", R"({"fail": [["Beep", -1, 0]]})",
              R"({"delay": [["Beep", -1]]})", R"({"fail": [["Beep"]]})", R"({"fail": 5})",
              R"({"delay": [[1, 2]]})", R"({"fail": [["Beep", "x"]]})",
              R"({"fail": [["Beep", -1]], "tail": []})", "[]"})
            QVERIFY_EXCEPTION_THROWN(panel().apply(Json::parse(scenario)), sim::BadRequest);
        QCOMPARE(Beep(1), 0);
    }

    void delayedCallTakesItsTime()
    {
        QElapsedTimer timer;
        timer.start();
        panel().delay("netT.setDevPriority", 60000);
        QCOMPARE(netT::setDevPriority("WIFI", false, 200), int(netT::ERR_TIMEOUT));
        QVERIFY(timer.elapsed() >= 200 && panel().get("net.priority") == "ETH");
        panel().delay("netT.setDevPriority", 60);
        QCOMPARE(netT::setDevPriority("WIFI", false, 200), 0);
        QVERIFY(timer.elapsed() >= 260 && panel().get("net.priority") == "WIFI");
    }

    void panelAnswersDuringADelayedCall()
    {
        panel().delay("Beep", 60000);
        std::thread slow([] { Beep(5); });
        PLATFORM::CPlatLcd::setBrightness(50);
        panel().hurry();
        slow.join();
        std::thread([] {
            pthread_setname_np(pthread_self(), "timer");
            Beep(5);
        }).join();
        const Json log = panel().calls();
        QVERIFY(log[0]["op"] == "PLATFORM.CPlatLcd.setBrightness" && log[0]["thread"] == "gui");
        QVERIFY(log[1]["thread"] == "worker" && log[2]["thread"] == "timer");
    }

    void logsLikeCallsCheaply()
    {
        PLATFORM::CPlatLcd::setBrightness(50);
        for (std::uint64_t i = 0; i < sim::CallLog::limit; ++i)
            PLATFORM::CPlatBuzzer::runBeep();
        const Json log = panel().calls();
        QCOMPARE(log.size(), std::size_t(sim::CallLog::limit));
        QVERIFY(log[0]["op"] == "PLATFORM.CPlatBuzzer.runBeep" && log[0]["args"] == Json::array());
    }

    void clicksArePlayedByTheBuzzerTask()
    {
        PLATFORM::CPlatBuzzer::setBeepTime(40);
        PLATFORM::CPlatBuzzer::open();
        PLATFORM::CPlatBuzzer::open();
        QVERIFY(panel().get("buzzer.beeps") == Json::array());
        PLATFORM::CPlatBuzzer::setEnable(0);
        PLATFORM::CPlatBuzzer::open(); // makes no sound
        for (int i = 0; i < 4; ++i)
            PLATFORM::CPlatBuzzer::runBeep();
        QVERIFY(panel().get("buzzer.beeps") == Json({40, 40}) && panel().get("buzzer.opens") == 3);
    }

    // What is plugged in before a registration reaches it too, but nothing that was pulled out.
    void hotPlugReachesRegistrations()
    {
        QStringList first;
        QStringList second;
        const auto seen = [](const QStringList &events) {
            const std::lock_guard lock(gate);
            return events.join(u' ');
        };
        const PLATFORM::MediaCallbacks callbacks{note<'+'>, note<'-'>};
        sim::MediaService &media = panel().media();
        media.insert(201, "/forgotten");
        panel().reset();
        gate.lock();
        media.insert(201, "/a");
        media.insert(999, "/unknown");
        PLATFORM::CPlatMedia::addDev({PLATFORM::DEV_UDISK}, callbacks, &first);
        media.insert(777, "/b");
        media.remove(201, "/a");
        PLATFORM::CPlatMedia::addDev({PLATFORM::DEV_UDISK}, callbacks, &second);
        media.insert(201, "/c");
        gate.unlock();
        QTRY_COMPARE(seen(first), "+201/a +777/b -201/a +201/c"_s);
        QTRY_COMPARE(seen(second), "+201/c"_s);
        panel().reset();
    }

    void wordsAreAllOrNone()
    {
        unsigned short words[] = {1, 2, 3};
        QVERIFY(backstage_AddrWrite(10613, words, 3) < 0 && panel().get("words.10613") == 3);
        QVERIFY(backstage_AddrRead(10613, words, 3) < 0 && words[0] == 1);
        panel().set("words.10614", nullptr);
        QVERIFY(backstage_AddrRead(10614, words, 1) < 0);
        QCOMPARE(backstage_AddrWrite(10613, words, 2), 0);
        QVERIFY(backstage_AddrRead(10614, words, 1) == 0 && words[0] == 2);
    }

    // file | result that is ordered | result
    void readsOrderlyFilesOnly_data()
    {
        rows({"program.bin | 0 | 0", "program.bin | -3 | -3", "empty.bin | 0 | -1",
              "pipe.bin | 0 | -1", ". | 0 | -1", "missing.bin | 0 | -1"});
    }
    void readsOrderlyFilesOnly()
    {
        const PanelRoot disk;
        disk.write("/program.bin"_s, QByteArray(5000, 'p'));
        disk.write("/empty.bin"_s, {});
        const std::string folder = qgetenv("SYSSET_ROOT").toStdString() + '/';
        ::mkfifo((folder + "pipe.bin").c_str(), 0600);
        panel().set("plc.file", {{"read", number(1)}, {"cam", false}});
        Plc5VDownLoadInfo info;
        tag extension;
        QCOMPARE(
            CLoadPlcInfo().ReadPlc5VDownLoadInfo(info, extension, folder + cell(0).toStdString()),
            number(2));
        std::size_t size = 0;
        for (const PlcProData &block : info.program)
            size += block.data.size();
        QCOMPARE(size, number(2) == 0 ? std::size_t(5000) : 0);
        QVERIFY(!info.bCam);
    }

    void notesWhatAPlcIsSent()
    {
        UpDate5vPlcPro plc;
        plc.Open({1, 2, 9600, 8, 1, 2});
        plc.DownLoadPro({"1234"}, {}, {{{1}}, {{2}}});
        QVERIFY(panel().calls()[0]["args"] == Json({1, 2, 9600, 8, 1, 2}));
        QVERIFY(panel().calls()[1]["args"] == Json({"1234", "", 2}));
    }
};

QTEST_GUILESS_MAIN(SimPanelTest)
#include "SimPanelTest.moc"
