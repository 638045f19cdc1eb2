#include "platform/local_udp.h"
#include "platform/posix/LocalUdp.h"
#include "platform/sim/Bytes.h"
#include "platform/sim/LoopbackSocket.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

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

    void checksAFile()
    {
        const QByteArray good = headed("KV100", 100, "data");
        const QByteArray newer = headed("KV100", 101, "data");
        const char *const longest = "KV-with-a-model-name-of-32-bytes";
        const struct
        {
            const char *tag, *name;
            QByteArray content;
            const char *model;
            int error;
        } files[] = {{"headed", "a.tmt3", good, "KV100", 0},
                     {"no data", "a.tmt3", headed("KV100", 0, {}), "KV100", 0},
                     {"longest model", "a.tmt3", headed(longest, 1, "data"), longest, 0},
                     {"plain", "a.tmt3", "whatever", "KV070T", 0},
                     {"newer project", "a.tmt3", newer, "KV100", -9},
                     {"newer firmware", "a.osf3", newer, "KV100", -9},
                     {"far newer", "logo.osf2", headed("KV100", 0xFFFFFFFF, "x"), "KV100", -9},
                     {"cut in its header", "a.tmt3", good.left(20), "", -1},
                     {"cut in its data", "a.osf3", good.chopped(1), "", -1},
                     {"longer than it says", "a.tmt3", good + "x", "", -1}};
        for (const auto &[tag, name, content, model, error] : files) {
            const Answer answer = ask(CHECK, make(QLatin1String(name), content));
            QVERIFY2(answer.result == 268 && answer.error == error && answer.model == model, tag);
        }
        panel().set("update.error", -7);
        QCOMPARE(ask(CHECK, m_disk.filePath("a.tmt3"_s)).error, -7);
    }

    // name | version, or none without a header | kind and ending of what is installed
    void installsEveryByte_data()
    {
        rows({"Line 1.b.tmt3 | 7 | project .tmt3", "a.osf3 | 9 | firmware .osf3",
              "a.tmt3 | | project .tmt3", "noending | | project "});
    }
    void installsEveryByte()
    {
        const QByteArray content =
            cell(1).isEmpty() ? sample() : headed("KV100", std::uint32_t(number(1)), sample());
        const QString installed = cell(2).remove(u' ');
        const std::string kind = cell(2).section(u' ', 0, 0).toStdString();
        ask(START, make(cell(0), content));
        for (const int percent : {10, 30, 50, 70, 90, 100}) {
            const Answer answer = ask(POLL);
            QVERIFY(answer.state == 1 && answer.percent == percent);
        }
        QCOMPARE(filesInPanel(), ".part"_s);
        const Answer last = ask(POLL);
        QVERIFY(last.state == 0 && last.error == 0);
        QCOMPARE(filesInPanel(), installed);
        QFile file(panelFolder() + installed);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll() == content);
        const Json state = panel().get("update");
        QVERIFY(state["installed"][kind] == cell(0).toStdString());
        QCOMPARE(state[kind + "Version"].get<int>(), cell(1).isEmpty() ? 100 : number(1));
        QCOMPARE(ask(POLL).error, -3); // nothing is being installed
    }

    // the source half-way | result that is ordered | error
    void brokenInstallLeavesNothing_data()
    {
        rows({"gone | 0 | -1", "cut | 0 | -1", "whole | -4 | -4"});
    }
    void brokenInstallLeavesNothing()
    {
        panel().set("update.result", number(1));
        const QString path = make("a.tmt3"_s, sample());
        ask(START, path);
        QCOMPARE(ask(POLL).state, 1);
        if (cell(0) == "gone"_s)
            QFile::remove(path);
        else if (cell(0) == "cut"_s)
            QFile::resize(path, 50000);
        Answer answer = ask(POLL);
        while (answer.state == 1)
            answer = ask(POLL);
        QCOMPARE(answer.error, number(2));
        QCOMPARE(filesInPanel(), QString());
        QVERIFY(panel().get("update.installed.project").get<std::string>().empty());
    }

    // From the first request on, and changed while it runs; and back.
    void misbehavesAsOrdered()
    {
        const std::pair<const char *, int> cases[] = {
            {R"({"silent": true})", CbbLocalUdp::ERR_TIMEOUT},
            {R"({"late": 600000})", CbbLocalUdp::ERR_TIMEOUT},
            {R"({"alive": false})", CbbLocalUdp::ERR_NO_SERVICE},
            {R"({"reply": "empty"})", 0},
            {R"({"reply": "short"})", 10}};
        const Json before = panel().get("update");
        for (const auto &[orders, result] : cases) {
            panel().reset();
            for (int i = 0; i < 2; ++i) {
                panel().set("update", Json::parse(orders));
                QVERIFY2(ask(POLL, {}, SHORT).result == result, orders);
                panel().set("update", before);
                QVERIFY2(ask(POLL).result == 268, orders);
            }
        }
    }

    void lateRepliesStillGoOutInOrder()
    {
        ask(POLL);
        const auto service = sim::loopbackAddress(panel().get("update.port").get<int>());
        sim::LoopbackSocket client;
        client.bind(0);
        panel().set("update.late", 80);
        const QString path = make("a.tmt3"_s, "x");
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

    // where it dies | polls answered before
    void diesWithinAnInstallAndComesBack_data() { rows({"1 | 0", "50 | 2", "99 | 5"}); }
    void diesWithinAnInstallAndComesBack()
    {
        panel().set("update.dieAt", number(0));
        ask(START, make("a.tmt3"_s, sample()));
        const int port = panel().get("update.port").get<int>();
        for (int i = 0; i < number(1); ++i)
            QCOMPARE(ask(POLL).state, 1);
        QVERIFY(ask(POLL, {}, SHORT).result < 0);
        QTRY_VERIFY(panel().get("update.alive") == false);
        QCOMPARE(ask(POLL).result, int(CbbLocalUdp::ERR_NO_SERVICE));
        QCOMPARE(filesInPanel(), QString());
        panel().set("update.alive", true);
        QCOMPARE(ask(POLL).percent, 0);
        QCOMPARE(panel().get("update.port").get<int>(), port);
    }

    void resetEndsAnInstall()
    {
        ask(START, make("a.tmt3"_s, sample()));
        QCOMPARE(ask(POLL).state, 1);
        panel().reset();
        QCOMPARE(filesInPanel(), QString());
        QCOMPARE(ask(POLL).state, 0);
    }

    void portThatIsTaken()
    {
        sim::LoopbackSocket other;
        const int usual = posix::localUdpPort("DownLoad");
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
    // The path of a file of that name on the U-disk.
    QString make(const QString &name, const QByteArray &content)
    {
        QFile file(m_disk.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return file.fileName();
    }

    static QString panelFolder()
    {
        return QString::fromLocal8Bit(qgetenv("SYSSET_ROOT")) + "/mnt/data/update/"_s;
    }
    static QString filesInPanel()
    {
        return QDir(panelFolder()).entryList(QDir::Files | QDir::Hidden, QDir::Name).join(u' ');
    }

    PanelRoot m_root;
    QTemporaryDir m_disk;
};

QTEST_GUILESS_MAIN(SimUpdateTest)
#include "SimUpdateTest.moc"
