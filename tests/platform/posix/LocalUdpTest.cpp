#include "platform/posix/LocalUdp.h"

#include "platform/local_udp.h"
#include "platform/posix/LoopbackSocket.h"
#include "tests/support/Rows.h"

#include <csignal>
#include <poll.h>
#include <sys/time.h>
#include <thread>

using CBB::CbbLocalUdp;
using os::LoopbackSocket;

namespace {

constexpr unsigned int LONG = 60000; // milliseconds that no good run waits for

} // namespace

class LocalUdpTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_service.bind(0));
        m_reply = "former";
    }
    void cleanup()
    {
        qunsetenv("SYSSET_UDP_DOWNLOAD");
        os::moveLocalUdpPort("DownLoad", 0);
    }

    void bringsTheReply_data() { rows({"0", "1", "268", "65507"}); }
    void bringsTheReply()
    {
        const std::string body(std::size_t(number(0)), '\xFE');
        std::thread echo =
            serve(1, [&](const auto &request) { m_service.send(request.from, request.bytes); });
        const int result = ask(body, LONG);
        echo.join();
        QCOMPARE(result, number(0));
        QVERIFY(m_reply == body);
    }

    // bytes | port, nobody listens at 1 (tcpmux) | result
    void failsAtOnce_data() { rows({"4 | 1 | -3", "65508 | 1 | -2", "4 | 65536 | -1"}); }
    void failsAtOnce()
    {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(os::exchangeDatagram(number(1), std::string(std::size_t(number(0)), 'x'), m_reply,
                                      LONG),
                 number(2));
        QVERIFY(m_reply.empty() && timer.elapsed() < LONG / 2);
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
        const int result = ask("body", 100);
        setitimer(ITIMER_REAL, &never, nullptr);
        QCOMPARE(result, int(CbbLocalUdp::ERR_TIMEOUT));
        QVERIFY(timer.elapsed() >= 100 && m_reply.empty());
    }

    // The replies to requests that were given up come when the last one is asked, and so does a
    // stranger's; and the ports that they go to belong to nobody else.
    void onlyItsOwnReplyAnswers()
    {
        LoopbackSocket stranger;
        QVERIFY(stranger.bind(0));
        std::vector<sockaddr_in> late;
        std::thread thread = serve(21, [&](const auto &request) {
            if (request.bytes == "early") {
                late.push_back(request.from);
                return;
            }
            for (const sockaddr_in &from : late)
                m_service.send(from, "late");
            stranger.send(request.from, "stranger");
            m_service.send(request.from, "right");
        });
        int unanswered = 0;
        for (int i = 0; i < 20; ++i)
            unanswered += ask("early", 1) == CbbLocalUdp::ERR_TIMEOUT ? 1 : 0;
        ask("last", LONG);
        thread.join();
        QCOMPARE(unanswered, 20);
        QCOMPARE(m_reply.c_str(), "right");
        for (const sockaddr_in &from : late)
            QVERIFY(!LoopbackSocket().bind(ntohs(from.sin_port)));
    }

    // value | the port that it names; the usual one if it names none
    void environmentNamesThePort_data()
    {
        rows({"40000 | 40000", "65535 | 65535", "", "0", "-5", "65536", "40000x", "_40000", "port",
              "99999999999999999999"});
    }
    void environmentNamesThePort()
    {
        const int usual = os::localUdpPort("DownLoad");
        const int named = cellOrEmpty(1).toInt();
        qputenv("SYSSET_UDP_DOWNLOAD", cell(0).toLatin1().replace('_', ' '));
        QCOMPARE(os::localUdpPort("DownLoad"), named != 0 ? named : usual);
        QCOMPARE(os::moveLocalUdpPort("DownLoad", 5000), named != 0 ? named : 5000);
        QCOMPARE(os::moveLocalUdpPort("DownLoad", 0), named != 0 ? named : usual);
        QCOMPARE(os::localUdpPort("Upload"), -1);
    }

private:
    // A thread that hands as many requests to `answer` as it is told to, and ends.
    template <typename Answer>
    std::thread serve(int requests, Answer answer)
    {
        return std::thread([this, requests, answer] {
            for (int left = requests; left > 0;) {
                pollfd waiting{m_service.fd(), POLLIN, 0};
                ::poll(&waiting, 1, -1);
                if (const auto request = m_service.receive(); request && left-- > 0)
                    answer(*request);
            }
        });
    }
    int ask(const std::string &body, unsigned int timeoutMs)
    {
        return os::exchangeDatagram(m_service.port(), body, m_reply, timeoutMs);
    }

    LoopbackSocket m_service; // at a new port for each test
    std::string m_reply;
};

QTEST_GUILESS_MAIN(LocalUdpTest)
#include "LocalUdpTest.moc"
