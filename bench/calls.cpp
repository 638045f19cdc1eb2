// Measures calls of services there and back: a question to the network service and a word of the
// words service, beside a bare ping of the network service over a connection that nothing else
// uses. They run in turn, so that other load on the machine slows all. The network service is one
// without a network, in a process of its own; bus and words service are the real ones.

#include "bench/Statistics.h"
#include "platform/linux/WordsClient.h"
#include "platform/net.h"
#include "tests/platform/linux/FakeNetwork.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int RUNS = 201;
constexpr int CALLS = 20; // in each run
constexpr double LIMIT = 3;
constexpr unsigned int TIMEOUT_MS = 900;
constexpr int START_MS = 5000;
constexpr unsigned int WORD = 10590;

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "%s\n", what);
    std::_Exit(1);
}

// A program that runs until the object goes.
class Child
{
public:
    // Returns what it has written once that matches `sign`.
    QString start(const QString &program, const QStringList &arguments, const char *sign)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(program, arguments);
        const QRegularExpression pattern(QString::fromLatin1(sign));
        QByteArray written;
        while (m_process.waitForReadyRead(START_MS)) {
            written += m_process.readAll();
            const auto match = pattern.match(QString::fromLocal8Bit(written));
            if (match.hasMatch())
                return match.captured(match.lastCapturedIndex());
        }
        fail(qPrintable(program + QStringLiteral(" does not start")));
    }
    Child() = default;
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;
    ~Child()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

double timePings(sdbus::IProxy &proxy)
{
    return bench::timed([&] {
        for (int i = 0; i < CALLS; ++i)
            proxy.callMethod("Ping").onInterface("org.freedesktop.DBus.Peer");
    });
}

double timeQuestions()
{
    return bench::timed([] {
        for (int i = 0; i < CALLS; ++i)
            if (netT::netIsExist("eth0", false, TIMEOUT_MS) != 0)
                fail("the network service does not answer");
    });
}

double timeWords(board::WordsClient &client)
{
    return bench::timed([&] {
        unsigned short word = 0;
        for (int i = 0; i < CALLS; ++i)
            if (!client.read(WORD, &word, 1))
                fail("the words service does not answer");
    });
}

bool measure(int wordsPort)
{
    const auto bus = sdbus::createSystemBusConnection();
    const auto proxy = sdbus::createProxy(*bus, board::NETWORK_SERVICE, "/org/sysset/Network1");
    board::WordsClient words(wordsPort, std::chrono::milliseconds(TIMEOUT_MS));
    std::vector<double> pings;
    std::vector<double> questions;
    std::vector<double> reads;
    for (int run = 0; run < RUNS; ++run) {
        pings.push_back(timePings(*proxy));
        questions.push_back(timeQuestions());
        reads.push_back(timeWords(words));
    }
    const double ping = bench::median(pings) * 1000 / CALLS;
    const bool question = bench::report("netIsExist there and back",
                                        bench::median(questions) * 1000 / CALLS, ping, "us", LIMIT);
    const bool word = bench::report("a word there and back", bench::median(reads) * 1000 / CALLS,
                                    ping, "us", LIMIT);
    return question && word;
}

void writeConfiguration(const QTemporaryDir &root)
{
    const QDir folder(root.path());
    QFile file(folder.filePath(QStringLiteral("etc/sysset/panel.conf")));
    if (!folder.mkpath(QStringLiteral("etc/sysset")) ||
        !folder.mkpath(QStringLiteral("mnt/data/sysset/words")) ||
        !file.open(QIODevice::WriteOnly) || file.write("[words]\nport = 0\n") < 0)
        fail("no folder for the words");
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::string(argv[1]) == "--serve")
        return serveFakeNetwork(argv[2]);
    const QCoreApplication application(argc, argv);
    const QTemporaryDir root;
    writeConfiguration(root);
    const QString address = QStringLiteral("unix:path=") + root.filePath(QStringLiteral("bus"));
    qputenv("SYSSET_ROOT", root.path().toLocal8Bit());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address.toLocal8Bit());
    Child bus;
    Child network;
    Child words;
    bus.start(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--session"), QStringLiteral("--nofork"),
               QStringLiteral("--print-address"), QStringLiteral("--address=") + address},
              "unix:");
    network.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--serve"), QStringLiteral("sound")}, "ready");
    const QString port =
        words.start(QCoreApplication::applicationDirPath() + QStringLiteral("/sysset-words"), {},
                    "port (\\d+)");
    return measure(port.toInt()) ? 0 : 1;
}
