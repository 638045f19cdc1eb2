// The whole way: the panel's client, the service, a real MQTT server and a certificate service.
#include "platform/linux/CloudLink.h"
#include "tests/cloud_service/FakeTimesync.h"
#include "tests/support/PanelRoot.h"

#include <QTcpServer>

namespace {

constexpr int PATIENCE = 15000;
const QString DEVICE = "panel1"_s;
const QString SALT = "0123456789abcdef"_s;

// A program that ends with this.
class Program
{
public:
    void start(const QString &file, const QStringList &arguments)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(file, arguments);
        QVERIFY(m_process.waitForStarted());
    }
    ~Program() { kill(); }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

quint16 freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost) ? probe.serverPort() : quint16(0);
}

int answer(const std::string &topic, const std::string &message, void *context)
{
    *static_cast<std::atomic<int> *>(context) += topic == "kvhmi/CQ/panel1" ? 1 : 100;
    return static_cast<int>(message.size());
}

} // namespace

class CloudServiceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable("mosquitto"_s, {"/usr/sbin"_s}).isEmpty())
            QSKIP("needs mosquitto", );
        QVERIFY(QDir(m_root.path()).mkpath("mnt/data/cloud"_s));
        QCOMPARE(QProcess::execute(tool("authority.py"_s), {path(""_s), "--server"_s, "localhost"_s,
                                                            "--client"_s, "backend"_s}),
                 0);
        write("users"_s, (DEVICE + u':' + SALT).toUtf8());
        write("acl"_s, "user backend\ntopic readwrite kvhmi/#\npattern read kvhmi/CQ/%u\n"
                       "pattern write kvhmi/CP/%u\n");
        write(
            "mosquitto.conf"_s,
            "listener %1 127.0.0.1\ncafile %2\ncertfile %3\nkeyfile %3\nrequire_certificate true\n"
            "use_identity_as_username true\nacl_file %4\nlog_type error\nuser root\n"_s.arg(m_port)
                .arg(path("ca.pem"_s), path("localhost.pem"_s), path("acl"_s))
                .toUtf8());
        m_est.start(tool("est.py"_s), {"--port"_s, QString::number(m_estPort), "--certificate"_s,
                                       "localhost.pem"_s, path(""_s)});
        m_bus.start();
        m_timesync = std::make_unique<FakeTimesync>("good");
        startBroker();
        startService();
    }

    void anEmptyPanelIsConnected()
    {
        QCOMPARE(m_link.status(), -1);
        start(config());
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), 1, PATIENCE);
    }

    void aRequestIsAnswered()
    {
        QCOMPARE(request("hello"), "5"_s);
        QCOMPARE(m_requests.load(), 1);
        QCOMPARE(request(QByteArray(262144, 'a')), "262144"_s);
    }

    void aMessageAboveTheLimitEndsTheConnection()
    {
        for (const int size : {262145, 400000}) {
            QCOMPARE(request(QByteArray(size, 'a')), "offline"_s); // the will
            for (const int status : {-4, 1})
                QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), status, PATIENCE);
        }
        QCOMPARE(m_requests.load(), 2);
    }

    void whoDiesComesBack()
    {
        m_service.kill();
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), -1, PATIENCE);
        startService();
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), 1, PATIENCE);
        m_broker.kill();
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), -4, PATIENCE);
        startBroker();
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), 1, PATIENCE);
    }

    void eachFaultHasItsStage_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const char *what, const char *value, int status) {
            QTest::newRow(name) << QString::fromLatin1(what) << QString::fromLatin1(value)
                                << status;
        };
        row("no such port", "port", "1", -4);
        row("another name", "server", "127.0.0.1", -4);
        row("no such name", "server", "none.invalid", -4);
        row("wrong authority", "trust", "system", -3);
        row("certificate service away", "certPort", "1", -3);
        row("password", "salt", "other", -3);
        for (const char *mood :
             {"pending", "closes", "nonsense", "empty", "foreign", "huge", "broken"})
            row(mood, "mood", mood, -3);
    }
    // And ends with its cause.
    void eachFaultHasItsStage()
    {
        QFETCH(QString, what);
        QFETCH(QString, value);
        netT::CloudConfig faulty = config();
        const std::map<QString, std::string *> texts = {{"server"_s, &faulty.sUrl},
                                                        {"salt"_s, &faulty.sSalt}};
        if (texts.count(what) == 1)
            *texts.at(what) = value.toStdString();
        if (what == "port"_s)
            faulty.nPort = value.toInt();
        if (what == "certPort"_s)
            faulty.nCertPort = value.toInt();
        faulty.sRequestTopic = "kvhmi/other"; // the same once more would change nothing
        write("mood"_s, what == "mood"_s ? value.toLatin1() : "normal");
        QFile::remove(m_root.path() + "/mnt/data/cloud/identity.pem"_s);
        m_link.start(faulty, what == "trust"_s ? "" : trust(), answer, &m_requests);
        QFETCH(int, status);
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), status, PATIENCE);
        write("mood"_s, "normal");
        start(config());
        QTRY_COMPARE_WITH_TIMEOUT(m_link.status(), 1, PATIENCE);
    }

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    static QString tool(const QString &name)
    {
        return QStringLiteral(TOOLS_FOLDER "/board/") + name;
    }
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    std::string trust() const
    {
        QFile file(path("ca.pem"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "";
    }
    netT::CloudConfig config() const
    {
        const std::string device = DEVICE.toStdString();
        return {"localhost",         "localhost", "time.example",     m_port,
                m_estPort,           device,      SALT.toStdString(), "kvhmi/CQ/" + device,
                "kvhmi/CP/" + device};
    }
    void start(const netT::CloudConfig &config)
    {
        QVERIFY(m_link.start(config, trust(), answer, &m_requests));
    }
    void startBroker() { m_broker.start("mosquitto"_s, {"-c"_s, path("mosquitto.conf"_s)}); }
    void startService()
    {
        m_service.start(QCoreApplication::applicationDirPath() + "/../bin/cloudService"_s, {});
    }
    QStringList asBackend(const QStringList &arguments) const
    {
        return QStringList{"-h"_s,       "localhost"_s,         "-p"_s,     QString::number(m_port),
                           "--cafile"_s, path("ca.pem"_s),      "--cert"_s, path("backend.pem"_s),
                           "--key"_s,    path("backend.pem"_s), "-q"_s,     "1"_s} +
               arguments;
    }
    // The panel's answer, "" if none comes.
    QString request(const QByteArray &message)
    {
        write("message"_s, message);
        QProcess listener;
        QByteArray told;
        listener.start("stdbuf"_s, QStringList{"-oL"_s, "mosquitto_sub"_s} +
                                       asBackend({"-d"_s, "-t"_s, "kvhmi/CP/panel1"_s, "-C"_s,
                                                  "1"_s, "-W"_s, "15"_s, "-F"_s, "=%p"_s}));
        while (!told.contains("Subscribed") && listener.waitForReadyRead())
            told += listener.readAllStandardOutput();
        QProcess::execute("mosquitto_pub"_s,
                          asBackend({"-t"_s, "kvhmi/CQ/panel1"_s, "-f"_s, path("message"_s)}));
        listener.waitForFinished();
        const QString text = QString::fromLatin1(listener.readAllStandardOutput());
        return text.section("\n="_s, 1).section(u'\n', 0, 0);
    }

    QTemporaryDir m_folder;
    PanelRoot m_root; // for the service
    TestBus m_bus;
    std::unique_ptr<FakeTimesync> m_timesync;
    const quint16 m_port = freePort();
    const quint16 m_estPort = freePort();
    Program m_est;
    Program m_broker;
    Program m_service;
    std::atomic<int> m_requests{0};
    board::CloudLink &m_link = board::cloudLink(); // its threads live as long as the process
};

QTEST_GUILESS_MAIN(CloudServiceTest)
#include "CloudServiceTest.moc"
