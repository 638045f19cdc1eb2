#include "platform/posix/LocalUdp.h"

#include "platform/local_udp.h"
#include "platform/sim/LoopbackSocket.h"

#include <QElapsedTimer>
#include <QtTest>

#include <array>
#include <csignal>
#include <poll.h>
#include <sys/time.h>
#include <thread>

using CBB::CbbLocalUdp;
using posix::exchangeDatagram;
using sim::LoopbackSocket;

namespace {

constexpr unsigned int LONG = 60000; // milliseconds that no good run waits for

// A thread that hands as many requests to `answer` as it is told to, and ends.
template <typename Answer>
std::thread serve(const LoopbackSocket &socket, int requests, Answer answer)
{
    return std::thread([&socket, requests, answer] {
        for (int left = requests; left > 0;) {
            pollfd waiting{socket.fd(), POLLIN, 0};
            ::poll(&waiting, 1, -1);
            if (const auto request = socket.receive(); request && left-- > 0)
                answer(*request);
        }
    });
}

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
    void init() { QVERIFY(m_service.bind(0)); }
    void cleanup()
    {
        qunsetenv("SYSSET_UDP_DOWNLOAD");
        posix::moveLocalUdpPort("DownLoad", 0);
    }

    void bringsTheReply()
    {
        for (const std::size_t size : {0, 1, 268, 65507}) {
            const std::string body(size, '\xFE');
            std::string reply = "former";
            std::thread echo = serve(m_service, 1, [&](const auto &request) {
                m_service.send(request.from, request.bytes);
            });
            const int result = exchangeDatagram(m_service.port(), body, reply, LONG);
            echo.join();
            QCOMPARE(std::size_t(result), size);
            QVERIFY(reply == body);
        }
    }

    // Without waiting.
    void failsClearly()
    {
        const struct
        {
            const char *why;
            std::size_t size;
            int port, result;
        } cases[] = {{"nobody there", 4, freePort(), CbbLocalUdp::ERR_NO_SERVICE},
                     {"too long", 65508, freePort(), CbbLocalUdp::ERR_SYSTEM},
                     {"unknown", 4, posix::localUdpPort("Upload"), CbbLocalUdp::ERR_ENDPOINT},
                     {"no port", 4, 65536, CbbLocalUdp::ERR_ENDPOINT}};
        QElapsedTimer timer;
        timer.start();
        for (const auto &[why, size, port, result] : cases) {
            std::string reply = "former";
            QVERIFY2(exchangeDatagram(port, std::string(size, 'x'), reply, LONG) == result, why);
            QVERIFY2(reply.empty(), why);
        }
        QVERIFY(timer.elapsed() < LONG / 2);
    }

    void waitsAsLongAsAskedThroughSignals()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        const itimerval every5ms{{0, 5000}, {0, 5000}};
        const itimerval never{};
        QElapsedTimer timer;
        timer.start();
        setitimer(ITIMER_REAL, &every5ms, nullptr);
        std::string reply = "former";
        const int result = exchangeDatagram(m_service.port(), "body", reply, 100);
        setitimer(ITIMER_REAL, &never, nullptr);
        QCOMPARE(result, int(CbbLocalUdp::ERR_TIMEOUT));
        QVERIFY(timer.elapsed() >= 100);
        QVERIFY(reply.empty());
    }

    // The replies to requests that were given up come when the last one is asked; and the ports
    // that they go to belong to nobody else.
    void lateReplyAnswersNothing()
    {
        std::vector<sockaddr_in> late;
        std::thread thread = serve(m_service, 21, [&](const auto &request) {
            if (request.bytes == "early") {
                late.push_back(request.from);
                return;
            }
            for (const sockaddr_in &from : late)
                m_service.send(from, "late");
            m_service.send(request.from, "right");
        });
        std::string reply;
        std::array<int, 20> results{};
        for (int &result : results)
            result = exchangeDatagram(m_service.port(), "early", reply, 1);
        exchangeDatagram(m_service.port(), "last", reply, LONG);
        thread.join();
        for (const int result : results)
            QCOMPARE(result, int(CbbLocalUdp::ERR_TIMEOUT));
        QCOMPARE(reply.c_str(), "right");
        for (const sockaddr_in &from : late)
            QVERIFY(!LoopbackSocket().bind(ntohs(from.sin_port)));
    }

    void takesNothingFromStrangers()
    {
        LoopbackSocket stranger;
        QVERIFY(stranger.bind(0));
        std::thread thread = serve(m_service, 2, [&](const auto &request) {
            stranger.send(request.from, "stranger");
            if (request.bytes == "ask")
                m_service.send(request.from, "service");
        });
        std::string answered;
        std::string unanswered;
        exchangeDatagram(m_service.port(), "ask", answered, LONG);
        const int result = exchangeDatagram(m_service.port(), "?", unanswered, 50);
        thread.join();
        QCOMPARE(answered.c_str(), "service");
        QCOMPARE(result, int(CbbLocalUdp::ERR_TIMEOUT));
    }

    void environmentNamesThePort()
    {
        const int usual = posix::localUdpPort("DownLoad");
        for (const char *value : {"40000", "65535", "", "0", "-5", "65536", "40000x", " 40000",
                                  "port", "99999999999999999999"}) {
            const int named = value == QByteArray("40000")   ? 40000
                              : value == QByteArray("65535") ? 65535
                                                             : 0;
            qputenv("SYSSET_UDP_DOWNLOAD", value);
            QCOMPARE(posix::localUdpPort("DownLoad"), named != 0 ? named : usual);
            QCOMPARE(posix::moveLocalUdpPort("DownLoad", 5000), named != 0 ? named : 5000);
            QCOMPARE(posix::moveLocalUdpPort("DownLoad", 0), named != 0 ? named : usual);
        }
    }

private:
    LoopbackSocket m_service; // at a new port for each test
};

QTEST_GUILESS_MAIN(LocalUdpTest)
#include "LocalUdpTest.moc"
