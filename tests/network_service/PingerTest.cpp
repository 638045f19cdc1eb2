// Pings over the loopback device, and a name server that does not answer.
#include "services/network/Pinger.h"

#include <QtTest>

#include <dlfcn.h>
#include <netdb.h>
#include <unistd.h>

using namespace std::literals;
using network::Pinger;
using network::PingTimes;

namespace {

constexpr int RESOLVER_TIME = 400; // ms

bool mayPing()
{
    const int raw = socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
    return raw >= 0 && close(raw) == 0;
}

struct Answer
{
    int count = 0;
    std::optional<PingTimes> times;
    Pinger::Done taker()
    {
        return [this](std::optional<PingTimes> got) { ++count, times = got; };
    }
};

} // namespace

// As the C library's, but for one name.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints,
                           addrinfo **result)
{
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (qstrcmp(name, "slow.test") != 0)
        return real(name, service, hints, result);
    QThread::msleep(RESOLVER_TIME);
    return EAI_AGAIN;
}

class PingerTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void badRequestsAreRefusedAtOnce()
    {
        Pinger pinger;
        Answer answer;
        for (const std::string &target :
             {""s, "1.2.3"s, "127.0.0.256"s, "127.0.0.1."s, "a b"s, "-c"s, "a;b"s, "\u00e4"s,
              "::1"s, "localhost\0"s, std::string(254, 'a')})
            pinger.ping("lo", target, 1, 1s, answer.taker());
        for (const std::string &device : {""s, std::string(16, 'a'), "lo\0"s})
            pinger.ping(device, "127.0.0.1", 1, 1s, answer.taker());
        for (const int count : {0, 101})
            pinger.ping("lo", "127.0.0.1", count, 1s, answer.taker());
        QCOMPARE(answer.count, 16);
        QVERIFY(!answer.times);
    }

    void repliesAreMeasured()
    {
        if (!mayPing())
            QSKIP("needs CAP_NET_RAW", );
        Pinger pinger;
        Answer answer;
        pinger.ping("lo", "localhost", 100, 5s, answer.taker());
        QTRY_COMPARE(answer.count, 1);
        QVERIFY(answer.times);
        QCOMPARE(answer.times->lostPercent, 0);
        QVERIFY(answer.times->shortest <= answer.times->average);
        QVERIFY(answer.times->average <= answer.times->longest);
    }

    // The address is one for documentation (RFC 5737); nobody has it.
    void lossEndsInTime()
    {
        Pinger pinger;
        Answer answer;
        QElapsedTimer timer;
        timer.start();
        for (const char *device : {"lo", "none0"})
            pinger.ping(device, "192.0.2.1", 100, 300ms, answer.taker());
        QTRY_COMPARE(answer.count, 2);
        QVERIFY(!answer.times);
        QVERIFY(timer.elapsed() < 400);
    }

    void aSilentNameServerHoldsNobodyUp()
    {
        Answer answer;
        Answer refused;
        QElapsedTimer timer;
        timer.start();
        {
            Pinger pinger;
            for (int at = 0; at < Pinger::MAX_RUNNING; ++at)
                pinger.ping("lo", "slow.test", 1, at == 0 ? 1s : 50ms, answer.taker());
            QTRY_COMPARE(answer.count, Pinger::MAX_RUNNING - 1);
            QVERIFY(timer.elapsed() < RESOLVER_TIME);
            // Their threads still wait.
            pinger.ping("lo", "127.0.0.1", 1, 1s, refused.taker());
            QCOMPARE(refused.count, 1);
        }
        QVERIFY(timer.elapsed() < RESOLVER_TIME);
        QTest::qWait(2 * RESOLVER_TIME);
        QCOMPARE(answer.count, Pinger::MAX_RUNNING - 1);
    }

    void thereIsRoomAgain()
    {
        Pinger pinger;
        Answer answer;
        for (int at = 1; at <= 2 * Pinger::MAX_RUNNING; ++at) {
            pinger.ping("none0", "127.0.0.1", 1, 1s, answer.taker());
            QCOMPARE(answer.count, at - 1);
            QTRY_COMPARE(answer.count, at);
        }
    }
};

QTEST_GUILESS_MAIN(PingerTest)
#include "PingerTest.moc"
