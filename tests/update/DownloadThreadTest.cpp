#include "platform/cos_thread.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "update/UpdateJob.h"

#include <QAbstractEventDispatcher>

#include <fstream>
#include <map>
#include <memory>
#include <sys/stat.h>

using sim::Json;
using sim::panel;

namespace {

constexpr int PROJECT = CDownloadThread::FUNC_DOWNLOAD_PRO;
constexpr int IMAGE = CDownloadThread::FUNC_DOWNLOAD_IMAGE;
constexpr int PLC = CDownloadThread::FUNC_DOWNLOAD_PLCPRO;

} // namespace

// The jobs of the worker against the simulated update service, over its real socket.
class DownloadThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        panel().reset();
        m_root.clear();
        COS::CCosRateTimer::init(50);
        for (const auto &[code, path] : m_files)
            std::ofstream(path) << "content";
        m_signals.clear();
        m_worker = std::make_unique<CDownloadThread>();
        const auto note = [this](void (CDownloadThread::*signal)(int), const char *name) {
            connect(m_worker.get(), signal, this, [this, name](int value) {
                m_signals += "%1 %2"_s.arg(QLatin1String(name)).arg(value);
            });
        };
        note(&CDownloadThread::sglProBarValue, "probar");
        note(&CDownloadThread::sglImageBarValue, "imagebar");
        note(&CDownloadThread::sglDownLoadProResult, "project");
        note(&CDownloadThread::sglDownLoadImageResult, "image");
        note(&CDownloadThread::sglDownLoadPlcProResult, "plc");
    }
    void cleanup()
    {
        COS::CCosRateTimer::destory();
        m_worker.reset();
        QCoreApplication::processEvents(); // signals that nobody has waited for
    }

    // job | laid over the panel's state | signals
    void jobs_data()
    {
        rows({R"(project | {"update": {"steps": [40]}} | probar 100; probar 100; project 0)",
              R"(image | {"update": {"steps": [40]}} | probar 100; imagebar 100; image 0)",
              R"(project | {"update": {"steps": [], "result": -4}} |
                 probar 100; probar 100; project -4)",
              R"(project | {"fail": [["CBB.request", -4, 1]]} | project -8; probar 100)",
              R"(image | {"fail": [["CBB.request", -4, 1]]} | image -11; probar 100)",
              R"(project | {"update": {"error": -9}} | project -8; probar 100)",
              R"(image | {"update": {"error": -9}} | image -9; probar 100)",
              R"(project | {"update": {"model": "KV101"}} | imagebar 100; project -5; probar 100)",
              R"(image | {"update": {"model": "KV101"}} | imagebar 100; image -11; probar 100)",
              R"(project | {"update": {"model": ""}, "machine": {"hmiType": null}} |
                 imagebar 100; project -5; probar 100)",
              R"(image | {"machine": {"boardModel": null}} | imagebar 100; image -11; probar 100)",
              // What answers is no service, or an answer of another size.
              R"(project | {"update": {"reply": "short"}} | project -8; probar 100)",
              R"(project | {"update": {"reply": "unterminated"}} |
                 imagebar 100; project -5; probar 100)",
              R"(project | {"update": {"reply": "noise"}} | imagebar 100; project -5; probar 100)",
              R"(project | {"update": {"reply": "long", "steps": [7]}} |
                 probar 100; probar 100; project 0)",
              // A poll that fails tells two results; this is intended.
              R"(project | {"update": {"late": 1300}} |
                 probar 100; probar 100; project -11; probar 100; project 0)",
              R"(project | {"update": {"steps": [1, 50, 99], "dieAt": 1}} |
                 probar 100; probar 100; project -11; probar 100; project 0)",
              R"(project | {"update": {"steps": [1, 50, 99], "dieAt": 99}} |
                 probar 100; probar 100; project -11; probar 100; project 0)",
              R"(image | {"update": {"steps": [50], "dieAt": 50}} |
                 probar 100; imagebar 100; image -11; imagebar 100; image 0)",
              R"(plc | {} | plc 0)", R"(plc | {"fail": [["plc.StopPLC", -6]]} | plc -6)",
              R"(nothing | {} |)"});
    }
    void jobs()
    {
        const int code = jobCode();
        panel().apply(Json::parse(cell(1).toStdString()));
        start(code);
        QTRY_VERIFY(isDone());
        QTRY_COMPARE(signalsSeen(), cell(2));
        QCOMPARE(panel().get("partition.remounts"),
                 code == PROJECT || code == IMAGE ? Json({1, 0}) : Json::array());
        QCOMPARE(panel().get("partition.writable"), Json(false));
    }

    void badFiles_data() { rows({"folder", "fifo", "missing", "empty", "cut"}); }
    // None is a success, and each leaves the partition as it was.
    void badFiles()
    {
        const QByteArray name = QTest::currentDataTag();
        const QTemporaryDir folder;
        const std::string base = folder.path().toStdString() + "/";
        QVERIFY(QDir().mkdir(folder.filePath("folder"_s)));
        QCOMPARE(mkfifo((base + "fifo").c_str(), 0600), 0);
        for (const auto &[file, content] : {std::pair("empty", ""), std::pair("cut", "SYSSE")})
            std::ofstream(base + file) << content;
        for (const auto &[code, seen] :
             {std::pair(PROJECT, "imagebar 100; project -5; probar 100"),
              std::pair(IMAGE, "imagebar 100; image -11; probar 100"), std::pair(PLC, "plc -15")}) {
            m_signals.clear();
            if (name == "cut" && code == PLC)
                continue; // which is none to a PLC
            QVERIFY(m_worker->SetFunction(code, base + name.toStdString()));
            QTRY_COMPARE(signalsSeen(), QString::fromLatin1(seen));
            QTRY_VERIFY(isDone());
        }
        QCOMPARE(panel().get("partition.remounts"), Json({1, 0, 1, 0}));
    }

    // Two pages, one service: it does one install and does not answer for the other.
    void secondInstallRefused()
    {
        startLongProject(4000);
        start(IMAGE);
        QTRY_COMPARE(signalsSeen(), "probar 100; image -11; probar 100; probar 100; project 0"_s);
        QTRY_COMPARE(panel().get("partition.remounts"), Json({1, 1, 0}));
        QCOMPARE(panel().get("update.installed.firmware"), Json(""));
    }

    // A service that has forgotten its install must not be taken for one that is done with it.
    void serviceComesBack()
    {
        startLongProject(60000);
        panel().set("update.alive", false);
        panel().set("update.alive", true);
        QTRY_VERIFY(isDone());
        QTRY_VERIFY(signalsSeen().contains("project -"_s));
    }

    // job | what has happened when the program ends | requests, as their commands, and remounts, as
    // their modes 0 and 1; of the polls the first
    void givenUp_data()
    {
        rows({"project | nothing |", "project | 1 asked | 1 12 0", "project | model | 1 12 0",
              "project | 2 asked | 1 12 6 0", "project | 3 asked | 1 12 6 7 0",
              "project | polled | 1 12 6 7 0", "project | result | 1 12 6 7 0",
              "image | 1 asked | 1 12 0", "image | question | 1 12 0",
              "image | question unseen | 1 12 0", "image | 2 asked | 1 12 6 0",
              "both | model | 1 12 6 7 1 12 0", "plc | start |"});
    }
    // What is under way ends by itself; nothing comes after it, and nothing is told.
    void givenUp()
    {
        const QString moment = cell(1);
        const bool both = cell(0) == "both"_s;
        const int code = both || cell(0) == "image"_s ? IMAGE : jobCode();
        if (both)
            startLongProject(60000);
        panel().apply({{"update",
                        {{"steps", {30}},
                         {"stepTime", moment == "result"_s ? 0 : 60000},
                         {"error", moment.startsWith("question"_s) ? Json(-9) : Json()},
                         {"late", moment.endsWith("asked"_s) ? 300 : 0}}}});
        if (moment == "model"_s || code == PLC)
            panel().apply(Json::parse(R"({"delay": [["KVCORE.GetHMIType", 60000],
                ["PLATFORM.CPlatBoard.getKVxxx", 60000], ["plc.Commu", 60000]]})"));
        connect(m_worker.get(), &CDownloadThread::sglConfirm, this, [this] {
            m_worker->giveUp();
            m_worker->setConfirmed();
        });
        if (moment != "nothing"_s)
            start(code);
        if (moment == "question unseen"_s) {
            m_worker->setConfirmed();
            while (!QAbstractEventDispatcher::instance()->hasPendingEvents()) // it is the first
                QThread::yieldCurrentThread();
            m_worker.reset();
        } else {
            QTRY_VERIFY(hasCome(moment));
            m_worker->giveUp();
            m_worker->giveUp();
            panel().hurry();
            QTRY_VERIFY(isDone() && m_worker->isGivenUp());
            QVERIFY(!m_worker->SetFunction(PLC, m_files.at(PLC)));
            QCOMPARE(COS::CCosRateTimer::removeTimer("UpDatePro"), -1);
        }
        COS::CCosRateTimer::destory();
        QCoreApplication::processEvents();
        QCOMPARE(talk(), cell(2));
        QCOMPARE(m_signals.filter(QRegularExpression("^(project|image|plc)"_s)).size(),
                 moment == "result"_s ? 1 : 0);
    }

    // Commands, payloads and time-outs, in their order.
    void requests()
    {
        panel().set("update.steps", Json::array({30}));
        for (const auto &[code, startTimeout] :
             {std::pair(PROJECT, 8000), std::pair(IMAGE, 3000)}) {
            panel().clearCalls();
            start(code);
            QTRY_VERIFY(isDone());
            const std::string &path = m_files.at(code);
            Json seen = Json::array();
            for (const Json &call : panel().calls()) {
                if (call["op"] == "CBB.request")
                    seen.push_back({call["args"], call["thread"]});
            }
            const Json poll = {{"DownLoad", 7, "", 1000}, "timer"};
            QCOMPARE(seen, Json({{{"DownLoad", 12, path, 8000}, "worker"},
                                 {{"DownLoad", 6, path, startTimeout}, "worker"},
                                 poll,
                                 poll}));
        }
    }

    void oneJobAtATime()
    {
        panel().delay("plc.Commu", 60000);
        start(PLC);
        // The job prints too, whenever it gets to it.
        QVERIFY(
            printedBy([&] { QVERIFY(!m_worker->SetFunction(PROJECT, "x")); }).contains("busy\r\n"));
        panel().hurry();
        QTRY_COMPARE(signalsSeen(), "plc 0"_s);
        QCOMPARE(m_worker->plcResult(), 0);
    }

    // The next job may come the moment that the one before is told.
    void freeAgainAtOnce()
    {
        for (int i = 0; i < 200; ++i) {
            while (!m_worker->SetFunction(0, ""))
                QThread::yieldCurrentThread();
        }
        while (!m_worker->SetFunction(PLC, m_files.at(PLC)))
            QThread::yieldCurrentThread();
        QTRY_COMPARE(signalsSeen(), "plc 0"_s);
    }

    // The PLC page connects after the start.
    void plcResultWaitsForItsConnection()
    {
        start(PLC);
        QVERIFY(m_worker->wait());
        QSignalSpy late(m_worker.get(), &CDownloadThread::sglDownLoadPlcProResult);
        QTRY_COMPARE(late.count(), 1);
    }

private:
    static int jobCode()
    {
        const std::map<QString, int> codes = {
            {"project"_s, PROJECT}, {"image"_s, IMAGE}, {"plc"_s, PLC}};
        const auto found = codes.find(cell(0));
        return found == codes.end() ? 0x1003 : found->second;
    }
    void start(int code)
    {
        const auto file = m_files.find(code);
        QVERIFY(m_worker->SetFunction(code, file == m_files.end() ? "" : file->second));
    }
    // Returns in the middle of its only step.
    void startLongProject(int stepTime)
    {
        panel().apply({{"update", {{"steps", {30}}, {"stepTime", stepTime}}}});
        start(PROJECT);
        QTRY_VERIFY(m_signals.contains("probar 30"_s));
    }
    bool isDone() const
    {
        return !m_worker->isRunning() && panel().get("partition.writable") == false;
    }
    bool hasCome(const QString &moment) const
    {
        std::string model;
        if (moment.endsWith("asked"_s))
            return panel().get("update.requests").size() == moment.left(1).toUInt();
        if (moment == "model"_s)
            return m_worker->fileModel(cell(0) == "project"_s ? PROJECT_JOB : IMAGE_JOB, model) ==
                   0;
        if (moment == "question"_s)
            return m_worker->isGivenUp(); // by the slot
        return moment == "nothing"_s || moment == "start"_s ||
               m_signals.contains(moment == "polled"_s ? "probar 30"_s : "project 0"_s);
    }
    static QString talk()
    {
        QStringList seen;
        for (const Json &call : panel().calls()) {
            const bool isRequest = call["op"] == "CBB.request";
            const QString number = QString::number(isRequest || call["op"] == "remountPartion"
                                                       ? call["args"][isRequest ? 1 : 0].get<int>()
                                                       : 7);
            if (number != "7"_s || (isRequest && !seen.contains("7"_s)))
                seen += number;
        }
        return seen.join(u' ');
    }
    // Bar values between the first and the last are the service's own.
    QString signalsSeen() const
    {
        return m_signals.filter(QRegularExpression("^(?!.*bar (?!100$))"_s)).join("; "_s);
    }

    PanelRoot m_root;
    QTemporaryDir m_stick;
    const std::string m_base = m_stick.path().toStdString() + "/";
    const std::map<int, std::string> m_files = {
        {PROJECT, m_base + "line.tmt3"}, {IMAGE, m_base + "panel.osf3"}, {PLC, m_base + "plc.bin"}};
    std::unique_ptr<CDownloadThread> m_worker;
    QStringList m_signals;
};

QTEST_GUILESS_MAIN(DownloadThreadTest)
#include "DownloadThreadTest.moc"
