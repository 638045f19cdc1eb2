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

using sim::Json;
using sim::panel;

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
        for (const auto &[name, job] : m_jobs)
            std::ofstream(job.second) << "content";
        m_signals.clear();
        m_worker = std::make_unique<CDownloadThread>();
        for (const auto &[signal, name] :
             {std::pair(&CDownloadThread::sglProBarValue, "probar"),
              std::pair(&CDownloadThread::sglImageBarValue, "imagebar"),
              std::pair(&CDownloadThread::sglDownLoadProResult, "project"),
              std::pair(&CDownloadThread::sglDownLoadImageResult, "image"),
              std::pair(&CDownloadThread::sglDownLoadPlcProResult, "plc")})
            connect(m_worker.get(), signal, this,
                    [this, what = QString::fromLatin1(name)](int value) {
                        m_signals += "%1 %2"_s.arg(what).arg(value);
                    });
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
              R"(image | {"update": {"model": ""}, "machine": {"boardModel": null}} |
                 imagebar 100; image -11; probar 100)",
              // What answers is no service, or an answer of another size.
              R"(project | {"update": {"reply": "short"}} | project -8; probar 100)",
              R"(project | {"update": {"reply": "unterminated"}} |
                 imagebar 100; project -5; probar 100)",
              R"(project | {"update": {"reply": "long", "steps": [7]}} |
                 probar 100; probar 100; project 0)",
              // A poll that fails tells two results; this is intended.
              R"(project | {"update": {"late": 1300}} |
                 probar 100; probar 100; project -11; probar 100; project 0)",
              R"(project | {"update": {"steps": [1, 50, 99], "dieAt": 99}} |
                 probar 100; probar 100; project -11; probar 100; project 0)",
              R"(image | {"update": {"steps": [50], "dieAt": 50}} |
                 probar 100; imagebar 100; image -11; imagebar 100; image 0)",
              R"(plc | {} | plc 0)", R"(plc | {"fail": [["plc.StopPLC", -6]]} | plc -6)",
              R"(nothing | {} |)",
              // The service does one install and does not answer for the other.
              R"(both | {"update": {"steps": [30], "stepTime": 4000}} |
                 probar 100; image -11; probar 100; probar 100; project 0)"});
    }
    void jobs()
    {
        startJob();
        QTRY_VERIFY(isDone()); // no sooner than the last result
        QCoreApplication::processEvents();
        QCOMPARE(signalsSeen(), cell(2));
        std::map<QString, Json> remounts = {
            {"project"_s, {1, 0}}, {"image"_s, {1, 0}}, {"both"_s, {1, 1, 0}}};
        remounts.insert({cell(0), Json::array()}); // for any other
        QCOMPARE(panel().get("partition.remounts"), remounts.at(cell(0)));
    }

    // job | laid over the panel's state | what has come when the program ends: so many requests,
    // the file's model, a signal, the question | remounts, and requests with their time-outs; of
    // the polls the first | what has been told
    void givenUp_data()
    {
        rows(
            {R"(project | {"update": {"late": 300}} | 1 | 1 12:8000 0)",
             R"(project | {"delay": [["KVCORE.GetHMIType", 60000]]} | model | 1 12:8000 0)",
             R"(project | {"update": {"late": 300}} | 2 | 1 12:8000 6:8000 0)",
             R"(project | {"update": {"late": 300}} | 3 | 1 12:8000 6:8000 7:1000 0)",
             R"(project | {"update": {"stepTime": 60000}} | probar 30 | 1 12:8000 6:8000 7:1000 0)",
             R"(project | {} | project 0 | 1 12:8000 6:8000 7:1000 0 | project 0)",
             R"(image | {"update": {"late": 300}} | 1 | 1 12:8000 0)",
             R"(image | {"update": {"error": -9}} | question | 1 12:8000 0 | asked)",
             R"(image | {"update": {"error": -9}} | question unseen | 1 12:8000 0)",
             R"(image | {"update": {"late": 300}} | 3 | 1 12:8000 6:3000 7:1000 0)",
             R"(both | {"update": {"stepTime": 60000},
                        "delay": [["PLATFORM.CPlatBoard.getKVxxx", 60000]]} |
                 model | 1 12:8000 6:8000 7:1000 1 12:8000 0)",
             R"(plc | {"delay": [["plc.Commu", 60000]]} | 0 |)"});
    }
    // What is under way ends by itself; nothing comes after it, and nothing is told.
    void givenUp()
    {
        connect(m_worker.get(), &CDownloadThread::sglConfirm, this, [this] {
            m_signals += "asked"_s;
            m_worker->giveUp();
            m_worker->setConfirmed();
        });
        panel().set("update.steps", Json::array({30}));
        startJob();
        if (cell(2) == "question unseen"_s) {
            m_worker->setConfirmed();
            while (!QAbstractEventDispatcher::instance()->hasPendingEvents()) // it is the first
                QThread::yieldCurrentThread();
            m_worker.reset();
        } else {
            QTRY_VERIFY(hasCome(cell(2)));
            m_worker->giveUp();
            m_worker->giveUp();
            panel().hurry();
            QTRY_VERIFY(isDone());
            QVERIFY(!begin("plc"_s));
            QCOMPARE(COS::CCosRateTimer::removeTimer("UpDatePro"), -1);
        }
        COS::CCosRateTimer::destory();
        QCoreApplication::processEvents();
        QCOMPARE(talk(), cell(3));
        QCOMPARE(m_signals.filter(QRegularExpression("^(asked|project|image|plc)"_s)).join(u' '),
                 cellOrEmpty(4));
    }

    void oneJobAtATime()
    {
        panel().delay("plc.Commu", 60000);
        QVERIFY(begin("plc"_s));
        // The job prints too, whenever it gets to it.
        QVERIFY(printedBy([&] { QVERIFY(!begin("project"_s)); }).contains("busy\r\n"));
        panel().hurry();
        QVERIFY(m_worker->wait());
        // The PLC page connects after the start.
        QSignalSpy late(m_worker.get(), &CDownloadThread::sglDownLoadPlcProResult);
        QTRY_COMPARE(late.count(), 1);
        QCOMPARE(m_worker->plcResult(), 0);
        // The next job may come the moment that the one before is told.
        for (int i = 0; i < 200; ++i) {
            while (!m_worker->SetFunction(0, "")) // at once: a look-up would take too long
                QThread::yieldCurrentThread();
        }
        while (!begin("plc"_s))
            QThread::yieldCurrentThread();
        QTRY_COMPARE(signalsSeen(), "plc 0; plc 0"_s);
    }

private:
    bool begin(const QString &name) const
    {
        const auto &[code, path] = m_jobs.at(name);
        return m_worker->SetFunction(code, path);
    }
    // The row's, on the state that it lays over the panel's; "both": a firmware in the middle of a
    // project.
    void startJob()
    {
        panel().apply(Json::parse(cell(1).toStdString()));
        QVERIFY(begin(cell(0) == "both"_s ? "project"_s : cell(0)));
        if (cell(0) == "both"_s) {
            QTRY_VERIFY(m_signals.contains("probar 30"_s));
            QVERIFY(begin("image"_s));
        }
    }
    bool isDone() const
    {
        return !m_worker->isRunning() && panel().get("partition.writable") == false;
    }
    bool hasCome(const QString &moment) const
    {
        std::string model;
        bool isNumber = false;
        const uint requests = moment.toUInt(&isNumber);
        if (isNumber)
            return panel().get("update.requests").size() == requests;
        if (moment == "model"_s)
            return m_worker->fileModel(cell(0) == "project"_s ? PROJECT_JOB : IMAGE_JOB, model) ==
                   0;
        return m_worker->isGivenUp() || m_signals.contains(moment);
    }
    // Remounts as "1" and "0", requests as command and time-out; of the polls the first.
    static QString talk()
    {
        QStringList seen;
        for (const Json &call : panel().calls()) {
            const Json &args = call["args"];
            if (call["op"] == "remountPartion")
                seen += QString::number(args[0].get<int>());
            else if (call["op"] == "CBB.request" && (args[1] != 7 || !seen.contains("7:1000"_s)))
                seen += "%1:%2"_s.arg(args[1].get<int>()).arg(args[3].get<int>());
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
    const std::map<QString, std::pair<int, std::string>> m_jobs = {
        {"project"_s, {CDownloadThread::FUNC_DOWNLOAD_PRO, m_base + "line.tmt3"}},
        {"image"_s, {CDownloadThread::FUNC_DOWNLOAD_IMAGE, m_base + "panel.osf3"}},
        {"plc"_s, {CDownloadThread::FUNC_DOWNLOAD_PLCPRO, m_base + "plc.bin"}},
        {"nothing"_s, {0x1003, m_base + "nothing"}}};
    std::unique_ptr<CDownloadThread> m_worker;
    QStringList m_signals;
};

QTEST_GUILESS_MAIN(DownloadThreadTest)
#include "DownloadThreadTest.moc"
