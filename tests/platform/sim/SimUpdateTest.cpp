#include "platform/local_udp.h"
#include "platform/sim/Bytes.h"
#include "platform/sim/LoopbackSocket.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"

#include <QtTest>

#include <sys/stat.h>

using CBB::CbbLocalUdp;
using sim::Json;
using sim::panel;

namespace {

enum Command { START = 6, POLL = 7, CHECK = 12 };

constexpr unsigned int LONG = 60000; // milliseconds that no good run waits for
constexpr unsigned int SHORT = 100;  // for requests that nobody answers

struct Answer
{
    int result; // of the request
    int state = 0, percent = 0, error = 0;
    std::string model;
};

Answer ask(int command, const QString &path = {}, unsigned int timeoutMs = LONG)
{
    const std::string body = sim::toBytes(std::uint32_t(command)) + path.toStdString();
    std::string reply;
    Answer answer{CbbLocalUdp::request("DownLoad", body, reply, timeoutMs), 0, 0, 0, {}};
    if (reply.size() < 12)
        return answer;
    answer.state = int(sim::numberFrom(reply, 0));
    answer.percent = int(sim::numberFrom(reply, 4));
    answer.error = int(sim::numberFrom(reply, 8));
    answer.model = reply.substr(12, reply.find('\0', 12) - 12);
    return answer;
}

QByteArray headed(const char *model, std::uint32_t version, const QByteArray &payload)
{
    return "SYSSETUP" + QByteArray::fromStdString(sim::toBytes(version)) +
           QByteArray(model).leftJustified(32, '\0') +
           QByteArray::fromStdString(sim::toBytes(std::uint32_t(payload.size()))) + payload;
}

QByteArray sample()
{
    QByteArray bytes;
    for (int i = 0; i < 60001; ++i)
        bytes += QByteArray::number(i);
    return bytes;
}

} // namespace

class SimUpdateTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }
    void cleanup()
    {
        qunsetenv("SYSSET_UDP_DOWNLOAD");
        panel().reset();
        m_root.clear();
    }

    void checksAFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("error");
        const QByteArray good = headed("KV100", 100, "data");
        const QByteArray newer = headed("KV100", 101, "data");
        const char *const longest = "KV-with-a-model-name-of-32-bytes";
        const struct
        {
            const char *tag, *name;
            QByteArray content;
            const char *model;
            int error;
        } rows[] = {{"headed", "a.tmt3", good, "KV100", 0},
                    {"no data", "a.tmt3", headed("KV100", 0, {}), "KV100", 0},
                    {"longest model", "a.tmt3", headed(longest, 1, "data"), longest, 0},
                    {"plain", "a.tmt3", "whatever", "KV070T", 0},
                    {"empty", "a.tmt3", {}, "", -1},
                    {"cut in its mark", "a.tmt3", good.left(7), "", -1},
                    {"newer project", "a.tmt3", newer, "KV100", -9},
                    {"newer firmware", "a.osf3", newer, "KV100", -9},
                    {"far newer", "logo.osf2", headed("KV100", 0xFFFFFFFF, "x"), "KV100", -9},
                    {"cut in its header", "a.tmt3", good.left(20), "", -1},
                    {"cut in its data", "a.osf3", good.chopped(1), "", -1},
                    {"longer than it says", "a.tmt3", good + "x", "", -1},
                    {"folder", "folder.tmt3", {}, "", -1},
                    {"pipe", "pipe.tmt3", {}, "", -1},
                    {"missing", "missing.tmt3", {}, "", -1}};
        for (const auto &[tag, name, content, model, error] : rows)
            QTest::newRow(tag) << name << content << model << error;
    }
    void checksAFile()
    {
        QFETCH(QString, name);
        QFETCH(QString, model);
        QFETCH(int, error);
        QFETCH(QByteArray, content);
        const Answer answer = ask(CHECK, make(name, content));
        QCOMPARE(answer.result, 268);
        QCOMPARE(answer.error, error);
        QCOMPARE(QString::fromStdString(answer.model), model);
        panel().set("update.error", -7);
        QCOMPARE(ask(CHECK, m_disk.filePath(name)).error, -7);
    }

    void installsEveryByte_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("installed");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("version");
        QTest::newRow("project") << "Line 1.b.tmt3" << headed("KV100", 7, sample())
                                 << "project.tmt3"
                                 << "project" << 7;
        QTest::newRow("firmware") << "a.osf3" << headed("KV100", 9, sample()) << "firmware.osf3"
                                  << "firmware" << 9;
        QTest::newRow("plain") << "a.tmt3" << sample() << "project.tmt3"
                               << "project" << 100;
        QTest::newRow("no ending") << "noending" << sample() << "project"
                                   << "project" << 100;
    }
    void installsEveryByte()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(QString, installed);
        QFETCH(QString, kind);
        ask(START, make(name, content));
        for (const int percent : {10, 30, 50, 70, 90, 100}) {
            const Answer answer = ask(POLL);
            QCOMPARE(answer.state, 1);
            QCOMPARE(answer.percent, percent);
        }
        QCOMPARE(filesInPanel(), QStringList({QStringLiteral(".part")}));
        const Answer last = ask(POLL);
        QCOMPARE(last.state, 0);
        QCOMPARE(last.error, 0);
        QCOMPARE(filesInPanel(), QStringList({installed}));
        QFile file(panelFolder() + installed);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll() == content);
        const Json state = panel().get("update");
        const std::string key = kind.toStdString();
        QVERIFY(state["installed"][key] == name.toStdString());
        QTEST(state[key + "Version"].get<int>(), "version");
        QCOMPARE(ask(POLL).error, -3); // nothing is being installed
    }

    void brokenInstallLeavesNothing_data()
    {
        QTest::addColumn<QByteArray>("content"); // of the source half-way; null: it is gone
        QTest::addColumn<int>("ordered");
        QTest::addColumn<int>("error");
        QTest::newRow("gone") << QByteArray() << 0 << -1;
        QTest::newRow("cut") << sample().left(50000) << 0 << -1;
        QTest::newRow("ordered") << sample() << -4 << -4;
    }
    void brokenInstallLeavesNothing()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, ordered);
        panel().set("update.result", ordered);
        const QString path = make(QStringLiteral("a.tmt3"), sample());
        ask(START, path);
        QCOMPARE(ask(POLL).state, 1);
        if (content.isNull())
            QFile::remove(path);
        else
            make(QStringLiteral("a.tmt3"), content);
        Answer answer = ask(POLL);
        while (answer.state == 1)
            answer = ask(POLL);
        QTEST(answer.error, "error");
        QCOMPARE(filesInPanel(), QStringList());
        QVERIFY(panel().get("update.installed.project").get<std::string>().empty());
    }

    void stepStandsForItsTime()
    {
        panel().set("update.stepTime", 600000);
        ask(START, make(QStringLiteral("a.tmt3"), sample()));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(ask(POLL).percent, 10);
        // One install at a time.
        panel().set("update", {{"stepTime", 1}, {"steps", {50}}});
        QVERIFY(ask(START, make(QStringLiteral("b.osf3"), sample()), 100).result < 0);
        QTRY_COMPARE(ask(POLL).state, 0);
        QCOMPARE(filesInPanel(), QStringList({QStringLiteral("project.tmt3")}));
    }

    void misbehavesAsOrdered_data()
    {
        QTest::addColumn<QByteArray>("orders");
        QTest::addColumn<int>("result");
        const std::pair<const char *, int> cases[] = {
            {R"({"silent": true})", CbbLocalUdp::ERR_TIMEOUT},
            {R"({"late": 600000})", CbbLocalUdp::ERR_TIMEOUT},
            {R"({"alive": false})", CbbLocalUdp::ERR_NO_SERVICE},
            {R"({"reply": "empty"})", 0},
            {R"({"reply": "short"})", 10},
            {R"({"reply": "long"})", 4096},
            {R"({"reply": "noise"})", 268},
            {R"({"reply": "unterminated"})", 268}};
        for (const auto &[orders, result] : cases)
            QTest::newRow(orders) << QByteArray(orders) << result;
    }
    // From the first request on, and changed while it runs; and back.
    void misbehavesAsOrdered()
    {
        QFETCH(QByteArray, orders);
        QFETCH(int, result);
        const Json before = panel().get("update");
        for (int i = 0; i < 2; ++i) {
            panel().set("update", Json::parse(orders.toStdString()));
            QCOMPARE(ask(POLL, {}, SHORT).result, result);
            panel().set("update", before);
            QCOMPARE(ask(POLL).result, 268);
        }
    }

    void lateRepliesStillGoOutInOrder()
    {
        ask(POLL);
        const auto service = sim::loopbackAddress(panel().get("update.port").get<int>());
        sim::LoopbackSocket client;
        client.bind(0);
        panel().set("update.late", 80);
        const QString path = make(QStringLiteral("a.tmt3"), "x");
        client.send(service, sim::toBytes(START) + path.toStdString());
        client.send(service, sim::toBytes(POLL));
        std::vector<std::uint32_t> percents;
        const auto take = [&] {
            if (const auto reply = client.receive())
                percents.push_back(sim::numberFrom(reply->bytes, 4));
            return percents.size();
        };
        QTRY_COMPARE(take(), std::size_t(2));
        QCOMPARE(percents, std::vector<std::uint32_t>({0, 10}));
    }

    void diesWithinAnInstallAndComesBack_data()
    {
        QTest::addColumn<int>("dieAt");
        QTest::addColumn<int>("polls"); // answered before
        QTest::newRow("at the first step") << 1 << 0;
        QTest::newRow("half-way") << 50 << 2;
        QTest::newRow("just before the end") << 99 << 5;
    }
    void diesWithinAnInstallAndComesBack()
    {
        QFETCH(int, dieAt);
        QFETCH(int, polls);
        panel().set("update.dieAt", dieAt);
        ask(START, make(QStringLiteral("a.tmt3"), sample()));
        const int port = panel().get("update.port").get<int>();
        for (int i = 0; i < polls; ++i)
            QCOMPARE(ask(POLL).state, 1);
        QVERIFY(ask(POLL, {}, SHORT).result < 0);
        QTRY_VERIFY(panel().get("update.alive") == false);
        QCOMPARE(ask(POLL).result, int(CbbLocalUdp::ERR_NO_SERVICE));
        QCOMPARE(filesInPanel(), QStringList());
        panel().set("update.alive", true);
        QCOMPARE(ask(POLL).percent, 0);
        QCOMPARE(panel().get("update.port").get<int>(), port);
    }

    void resetEndsAnInstall()
    {
        ask(START, make(QStringLiteral("a.tmt3"), sample()));
        QCOMPARE(ask(POLL).state, 1);
        panel().reset();
        QCOMPARE(filesInPanel(), QStringList());
        QCOMPARE(ask(POLL).state, 0);
    }

    void portThatIsTaken()
    {
        sim::LoopbackSocket other;
        const int usual = CBB::localUdpPort("DownLoad");
        other.bind(usual); // if it is taken already, so much the better
        QCOMPARE(ask(POLL).result, 268);
        QVERIFY(panel().get("update.port") != usual);
        panel().reset();
        other.bind(0);
        qputenv("SYSSET_UDP_DOWNLOAD", QByteArray::number(other.port()));
        QCOMPARE(ask(POLL, {}, SHORT).result, int(CbbLocalUdp::ERR_TIMEOUT));
        QVERIFY(other.receive().has_value());
        QVERIFY(panel().get("update.port") == 0);
    }

    void notesRequestsOfAnyBytes()
    {
        std::string reply;
        const std::string bytes("\xFF\0<img>%s\n", 10);
        CbbLocalUdp::request("DownLoad", sim::toBytes(99) + bytes, reply, 1);
        QTRY_VERIFY(panel().get("update.requests") ==
                    Json({{{"command", 99}, {"payload", bytes}}}));
        QVERIFY(panel().calls().back()["args"] == Json({"DownLoad", 99, bytes, 1}));
        CbbLocalUdp::request("DownLoad", "abc", reply, 1);
        QVERIFY(panel().calls().back()["args"] == Json({"DownLoad", nullptr, "", 1}));
        QVERIFY(!Json::parse(sim::dumpJson(panel().get(""))).is_null());
        panel().fail("CBB.request", -1, 1);
        QCOMPARE(ask(POLL).result, -1);
        QCOMPARE(ask(POLL).result, 268);
    }

private:
    // The path of a file of that name on the U-disk; "folder.", "pipe." and "missing." are such.
    QString make(const QString &name, const QByteArray &content)
    {
        QString path = m_disk.filePath(name);
        if (name.startsWith(QLatin1String("folder.")))
            QDir().mkpath(path);
        else if (name.startsWith(QLatin1String("pipe.")))
            ::mkfifo(path.toLocal8Bit().constData(), 0600);
        else if (!name.startsWith(QLatin1String("missing."))) {
            QFile file(path);
            file.open(QIODevice::WriteOnly);
            file.write(content);
        }
        return path;
    }

    static QString panelFolder()
    {
        return QString::fromLocal8Bit(qgetenv("SYSSET_ROOT")) + QStringLiteral("/mnt/data/update/");
    }
    static QStringList filesInPanel()
    {
        return QDir(panelFolder()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    PanelRoot m_root;
    QTemporaryDir m_disk;
};

QTEST_GUILESS_MAIN(SimUpdateTest)
#include "SimUpdateTest.moc"
