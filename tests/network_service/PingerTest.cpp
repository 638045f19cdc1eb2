// Pings over the loopback device, and a name server that does not answer.
// Qt's "signals" is a field of GLib's.
#define QT_NO_KEYWORDS
#include "services/network/Pinger.h"

#include "tests/support/Text.h"

#include <QtTest>

#include <dlfcn.h>
#include <netdb.h>
#include <unistd.h>

using namespace std::chrono_literals;
using network::Pinger;
using network::PingTimes;

namespace {

constexpr auto RESOLVER_TIME = 400ms;

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
    QThread::msleep(std::chrono::milliseconds(RESOLVER_TIME).count());
    return EAI_AGAIN;
}

class PingerTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void badRequestsAreRefusedAtOnce_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("count");
        for (const char *target :
             {"", "1.2.3", "127.0.0.256", "127.0.0.1.", "a b", "-c", "a;b", "\u00e4", "::1"})
            QTest::newRow(target) << "lo"_s << QString::fromUtf8(target) << 1;
        QTest::newRow("NUL") << "lo"_s
                             << "localhost"_s + QChar(u'\0') << 1;
        QTest::newRow("long") << "lo"_s << QString(254, u'a') << 1;
        QTest::newRow("no device") << QString() << "127.0.0.1"_s << 1;
        QTest::newRow("long device") << QString(16, u'a') << "127.0.0.1"_s << 1;
        QTest::newRow("none") << "lo"_s
                              << "127.0.0.1"_s << 0;
        QTest::newRow("too many") << "lo"_s
                                  << "127.0.0.1"_s << 101;
    }
    void badRequestsAreRefusedAtOnce()
    {
        QFETCH(QString, device);
        QFETCH(QString, target);
        QFETCH(int, count);
        Answer answer;
        Pinger().ping(device.toStdString(), target.toStdString(), count, 1s, answer.taker());
        QCOMPARE(answer.count, 1);
        QVERIFY(!answer.times);
    }

    void repliesAreMeasured_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("address") << "127.0.0.1"_s;
        QTest::newRow("name") << "localhost"_s;
    }
    void repliesAreMeasured()
    {
        QFETCH(QString, target);
        if (!mayPing())
            QSKIP("needs CAP_NET_RAW", );
        Pinger pinger;
        Answer answer;
        pinger.ping("lo", target.toStdString(), 100, 5s, answer.taker());
        QTRY_COMPARE(answer.count, 1);
        QVERIFY(answer.times);
        QCOMPARE(answer.times->lostPercent, 0);
        QVERIFY(answer.times->shortest <= answer.times->average);
        QVERIFY(answer.times->average <= answer.times->longest);
    }

    // The address is one for documentation (RFC 5737); nobody has it. No device, no right: at once.
    void lossEndsInTime_data()
    {
        QTest::addColumn<QString>("device");
        QTest::newRow("no reply") << "lo"_s;
        QTest::newRow("no such device") << "none0"_s;
    }
    void lossEndsInTime()
    {
        QFETCH(QString, device);
        Pinger pinger;
        Answer answer;
        QElapsedTimer timer;
        timer.start();
        pinger.ping(device.toStdString(), "192.0.2.1", 100, 300ms, answer.taker());
        QTRY_COMPARE(answer.count, 1);
        QVERIFY(!answer.times);
        QVERIFY(timer.elapsed() < 400);
    }

    void aSilentNameServerHoldsNobodyUp()
    {
        Pinger pinger;
        std::array<Answer, Pinger::MAX_RUNNING> answers;
        QElapsedTimer timer;
        timer.start();
        for (Answer &answer : answers)
            pinger.ping("lo", "slow.test", 1, 50ms, answer.taker());
        for (const Answer &answer : answers)
            QTRY_COMPARE(answer.count, 1);
        QVERIFY(timer.elapsed() < std::chrono::milliseconds(RESOLVER_TIME).count());
        // Their threads still wait.
        Answer refused;
        pinger.ping("lo", "127.0.0.1", 1, 1s, refused.taker());
        QCOMPARE(refused.count, 1);

        // They end, and there is room again.
        QTest::qWait(std::chrono::milliseconds(RESOLVER_TIME).count());
        Answer last;
        pinger.ping("none0", "127.0.0.1", 1, 1s, last.taker());
        QCOMPARE(last.count, 0);
        QTRY_COMPARE(last.count, 1);
        for (const Answer &answer : answers)
            QCOMPARE(answer.count, 1);
    }

    void itMayEndBeforeItsThreads()
    {
        Answer answer;
        QElapsedTimer timer;
        timer.start();
        Pinger().ping("lo", "slow.test", 1, 5s, answer.taker());
        QVERIFY(timer.elapsed() < std::chrono::milliseconds(RESOLVER_TIME).count());
        QTest::qWait(std::chrono::milliseconds(2 * RESOLVER_TIME).count());
        QCOMPARE(answer.count, 0);
    }
};

QTEST_GUILESS_MAIN(PingerTest)
#include "PingerTest.moc"
