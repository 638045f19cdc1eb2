#include "platform/local_udp.h"
#include "platform/sim/LoopbackSocket.h"

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <functional>
#include <poll.h>
#include <pthread.h>
#include <thread>

using CBB::CbbLocalUdp;
using CBB::exchangeDatagram;
using sim::LoopbackSocket;

namespace {

constexpr unsigned int LONG = 60000; // milliseconds that no good run waits for

// A service in a thread of its own: hands every request to `onRequest`.
class Service
{
public:
    using Handler = std::function<void(const LoopbackSocket &, const LoopbackSocket::Datagram &)>;

    explicit Service(Handler onRequest) : m_onRequest(std::move(onRequest))
    {
        m_socket.bind(0);
        m_port = m_socket.port();
        m_thread = std::thread([this] { run(); });
    }
    ~Service()
    {
        m_ending = true;
        std::string none;
        exchangeDatagram(m_port, "end", none, 0);
        m_thread.join();
    }

    int port() const { return m_port; }

private:
    void run()
    {
        while (!m_ending) {
            pollfd waiting{m_socket.fd(), POLLIN, 0};
            ::poll(&waiting, 1, -1);
            if (const auto request = m_socket.receive(); request && !m_ending)
                m_onRequest(m_socket, *request);
        }
    }

    const Handler m_onRequest;
    LoopbackSocket m_socket;
    int m_port = 0;
    std::atomic<bool> m_ending{false};
    std::thread m_thread;
};

void ignoreRequest(const LoopbackSocket &, const LoopbackSocket::Datagram &) {}

int freePort()
{
    LoopbackSocket socket;
    socket.bind(0);
    return socket.port();
}

} // namespace

class LocalUdpTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        qunsetenv("SYSSET_UDP_DOWNLOAD");
        CBB::moveLocalUdpPort("DownLoad", 0);
    }

    void bringsTheReply_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 268, 65507})
            QTest::addRow("%d", size) << size;
    }
    void bringsTheReply()
    {
        QFETCH(int, size);
        const std::string wanted(std::size_t(size), '\xFE');
        const std::string body("\x0C\0\0\0path", 8);
        std::string asked;
        std::string reply = "former";
        int result = 0;
        {
            const Service service([&](const auto &socket, const auto &request) {
                asked = request.bytes;
                socket.send(request.from, wanted);
            });
            result = exchangeDatagram(service.port(), body, reply, LONG);
        }
        QCOMPARE(result, size);
        QVERIFY(reply == wanted);
        QVERIFY(asked == body);
    }

    void failsClearly_data()
    {
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("result");
        QTest::newRow("nobody there") << freePort() << 4 << int(CbbLocalUdp::ERR_NO_SERVICE);
        QTest::newRow("too long") << freePort() << 65508 << int(CbbLocalUdp::ERR_SYSTEM);
        QTest::newRow("unknown") << CBB::localUdpPort("Upload") << 4
                                 << int(CbbLocalUdp::ERR_ENDPOINT);
        QTest::newRow("no port") << 65536 << 4 << int(CbbLocalUdp::ERR_ENDPOINT);
    }
    void failsClearly()
    {
        QFETCH(int, port);
        QFETCH(int, size);
        QElapsedTimer timer;
        timer.start();
        std::string reply = "former";
        QTEST(exchangeDatagram(port, std::string(std::size_t(size), 'x'), reply, LONG), "result");
        QVERIFY(reply.empty());
        QVERIFY(timer.elapsed() < LONG / 2);
    }

    void waitsAsLongAsAskedThroughSignals()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGUSR1, &action, nullptr);
        Service service(ignoreRequest);
        std::atomic<bool> done{false};
        std::thread disturber([&, waiting = pthread_self()] {
            while (!done) {
                pthread_kill(waiting, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
        QElapsedTimer timer;
        timer.start();
        std::string reply = "former";
        const int result = exchangeDatagram(service.port(), "body", reply, 100);
        done = true;
        disturber.join();
        QCOMPARE(result, int(CbbLocalUdp::ERR_TIMEOUT));
        QVERIFY(timer.elapsed() >= 100);
        QVERIFY(reply.empty());
    }

    // The replies to requests that were given up come when the last one is asked; and the ports
    // that they go to belong to nobody else.
    void lateReplyAnswersNothing()
    {
        std::vector<sockaddr_in> late;
        std::string reply;
        std::vector<int> results;
        {
            const Service service([&](const auto &socket, const auto &request) {
                if (request.bytes == "early") {
                    late.push_back(request.from);
                    return;
                }
                for (const sockaddr_in &from : late)
                    socket.send(from, "late");
                socket.send(request.from, "right");
            });
            for (int i = 0; i < 20; ++i)
                results.push_back(exchangeDatagram(service.port(), "early", reply, 1));
            exchangeDatagram(service.port(), "last", reply, LONG);
        }
        QCOMPARE(results, std::vector<int>(20, CbbLocalUdp::ERR_TIMEOUT));
        QCOMPARE(reply.c_str(), "right");
        QCOMPARE(late.size(), std::size_t(20));
        for (const sockaddr_in &from : late)
            QVERIFY(!LoopbackSocket().bind(ntohs(from.sin_port)));
    }

    void takesNothingFromStrangers()
    {
        LoopbackSocket stranger;
        QVERIFY(stranger.bind(0));
        Service service([&](const LoopbackSocket &socket, const LoopbackSocket::Datagram &request) {
            stranger.send(request.from, "stranger");
            if (request.bytes == "ask")
                socket.send(request.from, "service");
        });
        std::string reply;
        QCOMPARE(exchangeDatagram(service.port(), "ask", reply, LONG), 7);
        QCOMPARE(reply.c_str(), "service");
        QCOMPARE(exchangeDatagram(service.port(), "?", reply, 50), int(CbbLocalUdp::ERR_TIMEOUT));
    }

    void environmentNamesThePort_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("port"); // 0: not from the environment
        QTest::newRow("port") << QByteArray("40000") << 40000;
        QTest::newRow("highest") << QByteArray("65535") << 65535;
        for (const char *nonsense :
             {"", "0", "-5", "65536", "40000x", " 40000", "port", "99999999999999999999"})
            QTest::newRow(nonsense) << QByteArray(nonsense) << 0;
    }
    void environmentNamesThePort()
    {
        QFETCH(QByteArray, value);
        QFETCH(int, port);
        const int usual = CBB::localUdpPort("DownLoad");
        qputenv("SYSSET_UDP_DOWNLOAD", value);
        QCOMPARE(CBB::localUdpPort("DownLoad"), port != 0 ? port : usual);
        QCOMPARE(CBB::moveLocalUdpPort("DownLoad", 5000), port != 0 ? port : 5000);
        QCOMPARE(CBB::moveLocalUdpPort("DownLoad", 0), port != 0 ? port : usual);
    }
};

QTEST_GUILESS_MAIN(LocalUdpTest)
#include "LocalUdpTest.moc"
