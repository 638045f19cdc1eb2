#include "platform/cos_thread.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"
#include "update/CDownloadThread.h"

#include <QAbstractEventDispatcher>
#include <QFile>
#include <QtTest>

#include <fstream>
#include <memory>
#include <sys/stat.h>

using sim::Json;
using sim::panel;

namespace {

constexpr int PROJECT = CDownloadThread::FUNC_DOWNLOAD_PRO;
constexpr int IMAGE = CDownloadThread::FUNC_DOWNLOAD_IMAGE;

} // namespace

// The jobs of the worker against the simulated update service, over its real socket.
class DownloadThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void jobs_data();
    void jobs();
    void badFiles_data();
    void badFiles();
    void secondInstallRefused();
    void serviceComesBack();
    void endsDuringInstall();
    void requests();
    void oneJobAtATime();
    void freeAgainAtOnce();
    void plcResultWaitsForItsConnection();
    void confirmationLatches();
    void endsWithQuestionOpen();

private:
    void record(const QString &signal) { m_signals += signal; }
    bool isDone() const;
    QString signalsSeen();
    void start(int code);

    PanelRoot m_root;
    QTemporaryDir m_stick;
    std::unique_ptr<CDownloadThread> m_worker;
    QStringList m_signals;
};

void DownloadThreadTest::init()
{
    panel().reset();
    m_root.clear();
    COS::CCosRateTimer::init(50);
    for (const char *name : {"line.tmt3", "panel.osf3", "plc.bin"}) {
        QFile file(m_stick.filePath(QString::fromLatin1(name)));
        file.open(QIODevice::WriteOnly);
        file.write("content");
    }
    m_signals.clear();
    m_worker = std::make_unique<CDownloadThread>();
    const auto number = [this](const char *name) {
        return
            [this, name](int value) { record(QString::fromLatin1(name) + QString::number(value)); };
    };
    connect(m_worker.get(), &CDownloadThread::sglProBarValue, this, number("probar "));
    connect(m_worker.get(), &CDownloadThread::sglImageBarValue, this, number("imagebar "));
    connect(m_worker.get(), &CDownloadThread::sglDownLoadProResult, this, number("project "));
    connect(m_worker.get(), &CDownloadThread::sglDownLoadImageResult, this, number("image "));
    connect(m_worker.get(), &CDownloadThread::sglDownLoadPlcProResult, this, number("plc "));
}

void DownloadThreadTest::cleanup()
{
    COS::CCosRateTimer::destory();
    m_worker.reset();
    QCoreApplication::processEvents(); // signals that nobody has waited for
}

void DownloadThreadTest::start(int code)
{
    const char *name = code == PROJECT ? "line.tmt3" : code == IMAGE ? "panel.osf3" : "plc.bin";
    QVERIFY(m_worker->SetFunction(code, m_stick.filePath(QString::fromLatin1(name))));
}

bool DownloadThreadTest::isDone() const
{
    const std::size_t remounts = panel().get("partition.remounts").size();
    return m_worker->isFinished() && remounts % 2 == 0;
}

// Bar values between the first and the last are the service's own.
QString DownloadThreadTest::signalsSeen()
{
    QStringList seen;
    for (const QString &signal : qAsConst(m_signals)) {
        const int value = signal.section(u' ', -1).toInt();
        if (!signal.contains("bar"_s) || value == 100)
            seen += signal;
    }
    return seen.join("; "_s);
}

void DownloadThreadTest::jobs_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("orders"); // laid over the panel's state
    QTest::addColumn<QString>("seen");
    QTest::addColumn<int>("remounts");

    const auto row = [](const char *name, int code, const char *orders, const char *seen,
                        int remounts) {
        QTest::newRow(name) << code << QByteArray(orders) << QString::fromLatin1(seen) << remounts;
    };
    const char *quick = R"({"update": {"steps": [40]}})";
    row("project", PROJECT, quick, "probar 100; probar 100; project 0", 2);
    row("firmware", IMAGE, quick, "probar 100; imagebar 100; image 0", 2);
    row("project ends with the service's number", PROJECT,
        R"({"update": {"steps": [], "result": -4}})", "probar 100; probar 100; project -4", 2);

    row("project: no check", PROJECT, R"({"fail": [["CBB.request", -4, 1]]})",
        "project -8; probar 100", 2);
    row("firmware: no check", IMAGE, R"({"fail": [["CBB.request", -4, 1]]})",
        "image -11; probar 100", 2);
    row("project: unfit version", PROJECT, R"({"update": {"error": -9}})", "project -8; probar 100",
        2);
    row("firmware: unfit version declined", IMAGE, R"({"update": {"error": -9}})",
        "image -9; probar 100", 2);
    row("project: other model", PROJECT, R"({"update": {"model": "KV101"}})",
        "imagebar 100; project -5; probar 100", 2);
    row("firmware: other model", IMAGE, R"({"update": {"model": "KV101"}})",
        "imagebar 100; image -11; probar 100", 2);
    row("project: panel does not know its model", PROJECT,
        R"({"update": {"model": ""}, "machine": {"hmiType": null}})",
        "imagebar 100; project -5; probar 100", 2);
    row("firmware: board does not answer", IMAGE, R"({"machine": {"boardModel": null}})",
        "imagebar 100; image -11; probar 100", 2);
    row("project: answer too short", PROJECT, R"({"update": {"reply": "short"}})",
        "project -8; probar 100", 2);
    row("project: model without an end", PROJECT, R"({"update": {"reply": "unterminated"}})",
        "imagebar 100; project -5; probar 100", 2);
    row("project: noise for an answer", PROJECT, R"({"update": {"reply": "noise"}})",
        "imagebar 100; project -5; probar 100", 2);
    row("project: poll answered too late, both results told", PROJECT,
        R"({"update": {"late": 1300}})",
        "probar 100; probar 100; project -11; probar 100; project 0", 2);
    row("project: longer answer", PROJECT, R"({"update": {"reply": "long", "steps": [7]}})",
        "probar 100; probar 100; project 0", 2);
    for (const char *percent : {"1", "50", "99"}) {
        const QByteArray dies =
            QByteArray(R"({"update": {"steps": [1, 50, 99], "dieAt": )") + percent + "}}";
        row(qPrintable("project: service dies at %1, both results told"_s.arg(
                QString::fromLatin1(percent))),
            PROJECT, dies, "probar 100; probar 100; project -11; probar 100; project 0", 2);
    }
    row("firmware: service dies, both results told", IMAGE,
        R"({"update": {"steps": [50], "dieAt": 50}})",
        "probar 100; imagebar 100; image -11; imagebar 100; image 0", 2);
    row("PLC program", CDownloadThread::FUNC_DOWNLOAD_PLCPRO, "{}", "plc 0", 0);
    row("PLC refuses", CDownloadThread::FUNC_DOWNLOAD_PLCPRO, R"({"fail": [["plc.StopPLC", -6]]})",
        "plc -6", 0);
    row("no such job", 0x1003, "{}", "", 0);
}

void DownloadThreadTest::jobs()
{
    QFETCH(int, code);
    QFETCH(QByteArray, orders);
    QFETCH(QString, seen);
    QFETCH(int, remounts);

    panel().apply(Json::parse(orders.toStdString()));
    start(code);
    QTRY_VERIFY(isDone());
    QTRY_COMPARE(signalsSeen(), seen);
    QCOMPARE(static_cast<int>(panel().get("partition.remounts").size()), remounts);
    QCOMPARE(panel().get("partition.writable"), Json(false));
}

void DownloadThreadTest::badFiles_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("folder") << QByteArray("folder");
    QTest::newRow("FIFO") << QByteArray("fifo");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("empty") << QByteArray("empty");
    QTest::newRow("cut off in its mark") << QByteArray("cut");
    QTest::newRow("name that is no UTF-8") << QByteArray("caf\xE9");
}

// None is a success, and each leaves the partition as it was.
void DownloadThreadTest::badFiles()
{
    QFETCH(QByteArray, name);
    const QTemporaryDir folder;
    const std::string base = folder.path().toStdString() + "/";
    QVERIFY(QDir().mkdir(folder.filePath("folder"_s)));
    QCOMPARE(mkfifo((base + "fifo").c_str(), 0600), 0);
    for (const auto &[file, content] :
         {std::pair("empty", ""), std::pair("cut", "SYSSE"), std::pair("caf\xE9", "content")}) {
        std::ofstream stream(base + file);
        stream << content;
    }
    const QString path = QString::fromStdString(base + name.toStdString());
    for (const auto &[code, seen] :
         {std::pair(PROJECT, "imagebar 100; project -5; probar 100"),
          std::pair(IMAGE, "imagebar 100; image -11; probar 100"),
          std::pair(int(CDownloadThread::FUNC_DOWNLOAD_PLCPRO), "plc -15")}) {
        m_signals.clear();
        if (name == "cut" && code == CDownloadThread::FUNC_DOWNLOAD_PLCPRO)
            continue; // which is none to a PLC
        QVERIFY(m_worker->SetFunction(code, path));
        QTRY_COMPARE(signalsSeen(), QString::fromLatin1(seen));
        QTRY_VERIFY(isDone());
    }
    QCOMPARE(panel().get("partition.remounts"), Json({1, 0, 1, 0}));
}

// Two pages, one service: it does one install and does not answer for the other.
void DownloadThreadTest::secondInstallRefused()
{
    panel().apply({{"update", {{"steps", {30}}, {"stepTime", 4000}}}});
    start(PROJECT);
    QTRY_VERIFY(m_signals.contains("probar 30"_s));
    start(IMAGE);
    QTRY_COMPARE(signalsSeen(), "probar 100; image -11; probar 100; probar 100; project 0"_s);
    QTRY_COMPARE(panel().get("partition.remounts"), Json({1, 1, 0, 0}));
    QCOMPARE(panel().get("update.installed.firmware"), Json(""));
}

// A service that has forgotten its install must not be taken for one that is done with it.
void DownloadThreadTest::serviceComesBack()
{
    panel().apply({{"update", {{"steps", {30}}, {"stepTime", 60000}}}});
    start(PROJECT);
    QTRY_VERIFY(m_signals.contains("probar 30"_s));
    panel().set("update.alive", false);
    panel().set("update.alive", true);
    QTRY_VERIFY(isDone());
    QTRY_VERIFY(signalsSeen().contains("project -"_s));
}

void DownloadThreadTest::endsDuringInstall()
{
    panel().apply({{"update", {{"steps", {30}}, {"stepTime", 60000}}}});
    start(PROJECT);
    QTRY_VERIFY(m_signals.contains("probar 30"_s));
    COS::CCosRateTimer::destory();
    m_worker.reset();
    QCOMPARE(panel().get("partition.remounts"), Json({1, 0}));
    m_worker = std::make_unique<CDownloadThread>();
}

// Commands, payloads and time-outs, in their order.
void DownloadThreadTest::requests()
{
    panel().set("update.steps", Json::array({30}));
    for (const int code : {PROJECT, IMAGE}) {
        panel().clearCalls();
        start(code);
        QTRY_VERIFY(isDone());
        const QString path = m_stick.filePath(code == PROJECT ? "line.tmt3"_s : "panel.osf3"_s);
        QString seen;
        for (const Json &call : panel().calls()) {
            if (call["op"] == "CBB.request")
                seen += QString::fromStdString(call["args"].dump() + call["thread"].dump()) + u'\n';
        }
        const QString poll = R"(["DownLoad",7,"",1000]"timer")"_s + u'\n';
        const QString commands = R"(["DownLoad",12,"%1",8000]"worker")"_s + u'\n' +
                                 R"(["DownLoad",6,"%1",%2]"worker")"_s + u'\n';
        QCOMPARE(seen, commands.arg(path, code == PROJECT ? "8000"_s : "3000"_s) + poll + poll);
    }
}

void DownloadThreadTest::oneJobAtATime()
{
    panel().delay("plc.Commu", 60000);
    start(CDownloadThread::FUNC_DOWNLOAD_PLCPRO);
    // The job prints too, whenever it gets to it.
    QVERIFY(
        printedBy([&] { QVERIFY(!m_worker->SetFunction(PROJECT, "x"_s)); }).contains("busy\r\n"));
    panel().hurry();
    QTRY_COMPARE(signalsSeen(), "plc 0"_s);
    QCOMPARE(m_worker->plcResult(), 0);
}

// The next job may come the moment that the one before is told.
void DownloadThreadTest::freeAgainAtOnce()
{
    for (int i = 0; i < 200; ++i) {
        while (!m_worker->SetFunction(0, QString()))
            QThread::yieldCurrentThread();
    }
    while (!m_worker->SetFunction(CDownloadThread::FUNC_DOWNLOAD_PLCPRO,
                                  m_stick.filePath("plc.bin"_s)))
        QThread::yieldCurrentThread();
    QTRY_COMPARE(signalsSeen(), "plc 0"_s);
}

// The PLC page connects after the start.
void DownloadThreadTest::plcResultWaitsForItsConnection()
{
    start(CDownloadThread::FUNC_DOWNLOAD_PLCPRO);
    QVERIFY(m_worker->wait());
    QSignalSpy late(m_worker.get(), &CDownloadThread::sglDownLoadPlcProResult);
    QTRY_COMPARE(late.count(), 1);
}

void DownloadThreadTest::confirmationLatches()
{
    panel().apply({{"update", {{"error", -9}, {"steps", Json::array()}}}});
    bool accept = true;
    connect(
        m_worker.get(), &CDownloadThread::sglConfirm, this,
        [&] {
            record("asked"_s);
            if (accept)
                m_worker->setConfirmed();
        },
        Qt::BlockingQueuedConnection);
    for (const bool accepted : {true, false}) {
        accept = accepted;
        m_signals.clear();
        start(IMAGE);
        QTRY_COMPARE(signalsSeen(), "asked; probar 100; imagebar 100; image 0"_s);
        QTRY_VERIFY(isDone());
    }
}

// The program ends while the question is on its way to a thread that waits for the worker.
void DownloadThreadTest::endsWithQuestionOpen()
{
    panel().set("update.error", -9);
    connect(
        m_worker.get(), &CDownloadThread::sglConfirm, this, [&] { record("asked"_s); },
        Qt::BlockingQueuedConnection);
    start(IMAGE);
    while (!QAbstractEventDispatcher::instance()->hasPendingEvents()) // the question is the first
        QThread::yieldCurrentThread();
    m_worker.reset();
    QCOMPARE(signalsSeen(), QString());
    QCOMPARE(panel().get("partition.writable"), Json(false));
    m_worker = std::make_unique<CDownloadThread>();
}

QTEST_GUILESS_MAIN(DownloadThreadTest)
#include "DownloadThreadTest.moc"
