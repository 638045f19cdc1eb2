#include "platform/local_udp.h"
#include "platform/posix/Bytes.h"
#include "platform/posix/LocalUdp.h"
#include "platform/posix/LoopbackSocket.h"
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

// State, percent, error and model of the reply, "1 10 0 KV070T"; the request's result alone if
// there is no whole reply.
QString ask(int command, const QString &path = {}, unsigned int timeoutMs = LONG)
{
    std::string reply;
    const std::string body = os::toBytes(std::uint32_t(command)) + path.toStdString();
    const int result = CbbLocalUdp::request("DownLoad", body, reply, timeoutMs);
    if (result != 268)
        return QString::number(result);
    QString words;
    for (const std::size_t offset : {0U, 4U, 8U})
        words += QString::number(int(os::numberFrom(reply, offset))) + u' ';
    return (words + QLatin1String(reply.c_str() + 12)).trimmed();
}

// `content` with the header for that model, without one if there is none.
QByteArray headed(const QString &model, const QString &version, const QByteArray &content)
{
    const auto number = [](unsigned int value) {
        return QByteArray::fromStdString(os::toBytes(value));
    };
    return model.isEmpty()
               ? content
               : "SYSSETUP" + number(version.toUInt()) + model.toUtf8().leftJustified(32, '\0') +
                     number(unsigned(content.size())) + content;
}

// 300,000 bytes in which a lost or swapped block shows.
QByteArray sample()
{
    QByteArray bytes;
    while (bytes.size() < 300000)
        bytes += QByteArray::number(bytes.size());
    return bytes;
}

} // namespace

class SimUpdateTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        qunsetenv("SYSSET_UDP_DOWNLOAD");
        panel().reset();
        m_root.clear();
    }

    // name | model, none without a header | version | bytes too many | error and model
    void checksAFile_data()
    {
        rows({"a.tmt3 | KV100 | 100 | 0 | 0 KV100", "a.tmt3 | | | 0 | 0 KV070T",
              "a | KV-with-a-model-name-of-32-bytes | 1 | 0 | 0 KV-with-a-model-name-of-32-bytes",
              "a.tmt3 | KV100 | 101 | 0 | -9 KV100", "a.osf3 | KV100 | 101 | 0 | -9 KV100",
              "logo.osf2 | KV100 | 4294967295 | 0 | -9 KV100",
              "a.tmt3 | KV100 | 100 | -30 | -1", // cut in its header
              "a.osf3 | KV100 | 100 | -1 | -1", "a.tmt3 | KV100 | 100 | 1 | -1"});
    }
    void checksAFile()
    {
        QByteArray content = headed(cell(1), cell(2), "data");
        content.resize(content.size() + number(3));
        QCOMPARE(ask(CHECK, make(cell(0), content)), "0 0 "_s + cell(4));
    }

    // name | model, none without a header | version | kind | ending of what is installed
    void installsEveryByte_data()
    {
        rows({"Line 1.b.tmt3 | KV070T | 7 | project | .tmt3",
              "a.osf3 | KV070T | 9 | firmware | .osf3", "noending | | 100 | project |"});
    }
    void installsEveryByte()
    {
        const QByteArray content = headed(cell(1), cell(2), sample());
        const std::string kind = cell(3).toStdString();
        ask(START, make(cell(0), content));
        for (const int percent : {10, 30, 50, 70, 90, 100})
            QCOMPARE(ask(POLL), "1 %1 0 KV070T"_s.arg(percent));
        QCOMPARE(filesInPanel(), ".part"_s);
        QCOMPARE(ask(POLL), "0 100 0 KV070T"_s);
        QCOMPARE(filesInPanel(), cell(3) + cell(4));
        QFile file(m_folder + filesInPanel());
        QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == content);
        const Json state = panel().get("update");
        QVERIFY(state["installed"][kind] == cell(0).toStdString());
        QCOMPARE(state[kind + "Version"].get<int>(), number(2));
    }

    // the source half-way | result that is ordered | last reply
    void brokenInstallLeavesNothing_data()
    {
        rows({"gone | 0 | 0 30 -1 KV070T", "cut | 0 | 0 30 -1 KV070T",
              "whole | -4 | 0 100 -4 KV070T", "reset | 0 | 0 0 -3"});
    }
    void brokenInstallLeavesNothing()
    {
        panel().set("update.result", number(1));
        const QString path = make("a.tmt3"_s, sample());
        ask(START, path);
        QString answer = ask(POLL);
        if (cell(0) == "gone"_s)
            QFile::remove(path);
        else if (cell(0) == "cut"_s)
            QFile::resize(path, 50000);
        else if (cell(0) == "reset"_s)
            panel().reset();
        QCOMPARE(filesInPanel().isEmpty(), cell(0) == "reset"_s);
        while (answer.startsWith(u'1'))
            answer = ask(POLL);
        QCOMPARE(answer, cell(2));
        QVERIFY(filesInPanel().isEmpty() &&
                panel().get("update.installed.project").dump() == R"("")");
    }

    // From the first request on, and changed while it runs; and back.
    void misbehavesAsOrdered_data()
    {
        rows({R"({"silent": true} | -4)", R"({"late": 600000} | -4)", R"({"alive": false} | -3)",
              R"({"reply": "empty"} | 0)", R"({"reply": "short"} | 10)"});
    }
    void misbehavesAsOrdered()
    {
        const Json before = panel().get("update");
        for (int i = 0; i < 2; ++i) {
            panel().set("update", Json::parse(cell(0).toStdString()));
            QCOMPARE(ask(POLL, {}, SHORT), cell(1));
            panel().set("update", before);
            QCOMPARE(ask(POLL), "0 0 -3"_s);
        }
    }

    void lateRepliesStillGoOutInOrder()
    {
        ask(POLL);
        const auto service = os::loopbackAddress(panel().get("update.port").get<int>());
        os::LoopbackSocket client;
        client.bind(0);
        panel().set("update.late", 80);
        client.send(service, os::toBytes(START) + make("a.tmt3"_s, "x").toStdString());
        client.send(service, os::toBytes(POLL));
        QString percents;
        const auto take = [&] {
            if (const auto reply = client.receive())
                percents += "%1 "_s.arg(os::numberFrom(reply->bytes, 4));
            return percents;
        };
        QTRY_COMPARE(take(), "0 10 "_s);
    }

    // where it dies | polls answered before
    void diesWithinAnInstallAndComesBack_data() { rows({"1 | 0", "50 | 2", "99 | 5"}); }
    void diesWithinAnInstallAndComesBack()
    {
        panel().set("update.dieAt", number(0));
        ask(START, make("a.tmt3"_s, sample()));
        const int port = panel().get("update.port").get<int>();
        for (int i = 0; i < number(1); ++i)
            QVERIFY(ask(POLL).startsWith(u'1'));
        QVERIFY(ask(POLL, {}, SHORT).startsWith(u'-'));
        QTRY_VERIFY(panel().get("update.alive") == false);
        QCOMPARE(ask(POLL), "-3"_s);
        QCOMPARE(filesInPanel(), QString());
        panel().set("update.alive", true);
        QCOMPARE(ask(POLL), "0 0 -3"_s);
        QCOMPARE(panel().get("update.port").get<int>(), port);
    }

    void portThatIsTaken()
    {
        os::LoopbackSocket other;
        const int usual = os::localUdpPort("DownLoad");
        other.bind(usual); // it may be taken already
        QCOMPARE(ask(POLL), "0 0 -3"_s);
        QVERIFY(panel().get("update.port") != usual);
        panel().reset();
        other.bind(0);
        qputenv("SYSSET_UDP_DOWNLOAD", QByteArray::number(other.port()));
        QCOMPARE(ask(POLL, {}, SHORT), "-4"_s);
        QVERIFY(other.receive() && panel().get("update.port") == 0);
    }

    void notesRequestsOfAnyBytes()
    {
        std::string reply;
        const std::string bytes("\xFF\0<img>%s\n", 10);
        CbbLocalUdp::request("DownLoad", os::toBytes(99) + bytes, reply, 1);
        QTRY_VERIFY(panel().get("update.requests") ==
                    Json({{{"command", 99}, {"payload", bytes}}}));
        QVERIFY(panel().calls().back()["args"] == Json({"DownLoad", 99, bytes, 1}));
        CbbLocalUdp::request("DownLoad", "abc", reply, 1);
        QVERIFY(panel().calls().back()["args"] == Json({"DownLoad", nullptr, "", 1}));
        QVERIFY(!Json::parse(sim::dumpJson(panel().get(""))).is_null());
        panel().fail("CBB.request", -1, 1);
        QCOMPARE(ask(POLL), "-1"_s);
        QCOMPARE(ask(POLL), "0 0 -3"_s);
    }

private:
    // The path of a file of that name on the U-disk.
    QString make(const QString &name, const QByteArray &content) const
    {
        m_root.write("/disk/"_s + name, content);
        return qEnvironmentVariable("SYSSET_ROOT") + "/disk/"_s + name;
    }
    QString filesInPanel() const
    {
        return QDir(m_folder).entryList(QDir::Files | QDir::Hidden, QDir::Name).join(u' ');
    }

    PanelRoot m_root;
    const QString m_folder = qEnvironmentVariable("SYSSET_ROOT") + "/mnt/data/update/"_s;
};

QTEST_GUILESS_MAIN(SimUpdateTest)
#include "SimUpdateTest.moc"
