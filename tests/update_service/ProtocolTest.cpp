// Requests and replies of an update service, the same on both panels.
#include "platform/local_udp.h"
#include "platform/posix/Bytes.h"
#include "platform/posix/LoopbackSocket.h"
#include "platform/posix/UpdateWire.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QProcess>

namespace {

constexpr unsigned int LONG = 30000; // milliseconds that no good run waits for
constexpr unsigned int SHORT = 200;  // for requests that nobody answers

// "1 10 0 KV070T"; the size alone of what is no reply.
QString text(const std::string &reply)
{
    if (reply.size() != 268)
        return QString::number(reply.size());
    QString words;
    for (const std::size_t offset : {0U, 4U, 8U})
        words += QString::number(int(os::numberFrom(reply, offset))) + u' ';
    return (words + QLatin1String(reply.c_str() + 12)).trimmed();
}

} // namespace

class ProtocolTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QStringList arguments{MAKE_FILES, m_files.path()};
        QCOMPARE(QProcess::execute("/usr/bin/python3"_s, arguments), 0);
    }
    void init()
    {
        m_root.clear();
        m_root.write("/etc/os-release"_s, "IMAGE_VERSION=100\n");
        m_root.write("/etc/sysset/panel.conf"_s, "[machine]\nmodel=KV070T\n");
        m_root.write("/etc/sysset/update-keys.pem"_s, content("keys/update-keys.pem"));
        m_root.write("/mnt/data/prj/old"_s, "old");
        if (cell(0) == "service"_s)
            startService();
    }
    void cleanup()
    {
        if (m_service.state() != QProcess::NotRunning) {
            m_service.terminate();
            QVERIFY(m_service.waitForFinished());
            QCOMPARE(m_service.exitCode(), 0);
        }
        qunsetenv("SYSSET_UDP_DOWNLOAD");
        sim::panel().reset();
    }

    void checksInstallsAndKeepsTheResult_data() { panels(); }
    void checksInstallsAndKeepsTheResult()
    {
        QCOMPARE(ask(os::UPDATE_POLL), "0 0 -3"_s);
        QCOMPARE(ask(os::UPDATE_CHECK, "good"), "0 0 0 KV070T"_s);
        QCOMPARE(ask(os::UPDATE_CHECK, "newer"), "0 0 -9 KV070T"_s);
        for (const char *bad : {"empty", "cut", "not there"})
            QCOMPARE(ask(os::UPDATE_CHECK, bad), "0 0 -1"_s);
        QCOMPARE(ask(os::UPDATE_START, "good"), "1 0 0 KV070T"_s);
        for (int i = 0; i < 2; ++i)
            QCOMPARE(result(), "0 100 0 KV070T"_s);
        QCOMPARE(ask(os::UPDATE_START, "empty").left(5), "1 0 0"_s);
        for (int i = 0; i < 2; ++i)
            QCOMPARE(result().section(u' ', 2, 2), "-1"_s);
        QCOMPARE(ask(os::UPDATE_START, "good"), "1 0 0 KV070T"_s);
        QCOMPARE(result(), "0 100 0 KV070T"_s);
    }

    void answersOneInstallAndNoNonsense_data() { panels(); }
    void answersOneInstallAndNoNonsense()
    {
        QCOMPARE(ask(os::UPDATE_POLL), "0 0 -3"_s);
        os::LoopbackSocket client;
        client.bind(0);
        const auto service =
            os::loopbackAddress(qEnvironmentVariableIntValue("SYSSET_UDP_DOWNLOAD"));
        const std::string start = request(os::UPDATE_START, "good");
        const std::string check = request(os::UPDATE_CHECK, "good");
        for (const std::string &each :
             {start, start, std::string("\6\0\0", 3), std::string(), os::toBytes(99) + "x", check})
            client.send(cell(0) == "service"_s ? service : simulated(), each);
        QStringList replies;
        const auto count = [&] {
            if (const auto reply = client.receive())
                replies += text(reply->bytes);
            return replies.size();
        };
        QTRY_COMPARE(count(), 2);
        QTest::qWait(SHORT);
        QCOMPARE(count(), 2);
        replies.sort();
        QCOMPARE(replies, (QStringList{"0 0 0 KV070T"_s, "1 0 0 KV070T"_s}));
        QCOMPARE(result(), "0 100 0 KV070T"_s);
    }

private:
    static void panels() { rows({"simulated", "service"}); }

    static sockaddr_in simulated()
    {
        return os::loopbackAddress(sim::panel().get("update.port").get<int>());
    }
    void startService()
    {
        os::LoopbackSocket free;
        free.bind(0);
        qputenv("SYSSET_UDP_DOWNLOAD", QByteArray::number(free.port()));
        free.close();
        m_service.setProcessChannelMode(QProcess::MergedChannels);
        m_service.start(QStringLiteral(SERVICE_PROGRAM), QStringList());
        QByteArray said; // asked before, the simulated one takes the port
        while (!said.contains("listening") && m_service.waitForReadyRead())
            said += m_service.readAll();
        QVERIFY2(said.contains("listening"), said);
    }
    std::string request(int command, const char *name) const
    {
        const QString path = m_files.path() + u'/' + QLatin1String(name) + ".tmt3"_s;
        return os::toBytes(std::uint32_t(command)) + path.toStdString();
    }
    QString ask(int command, const char *name = nullptr) const
    {
        std::string reply;
        const std::string body =
            name == nullptr ? os::toBytes(std::uint32_t(command)) : request(command, name);
        const int size = CBB::CbbLocalUdp::request("DownLoad", body, reply, LONG);
        return size < 0 ? QString::number(size) : text(reply);
    }
    // Of the install that is under way, once it has ended.
    QString result() const
    {
        QString reply = ask(os::UPDATE_POLL);
        while (reply.startsWith(u'1'))
            reply = ask(os::UPDATE_POLL);
        return reply;
    }
    QByteArray content(const char *name) const
    {
        QFile file(m_files.path() + u'/' + QLatin1String(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    PanelRoot m_root;
    QTemporaryDir m_files;
    QProcess m_service;
};

QTEST_GUILESS_MAIN(ProtocolTest)
#include "ProtocolTest.moc"
