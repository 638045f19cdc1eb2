// When the service tries what, by a clock of the test's own.
#include "services/cloud/Session.h"

#include "tests/support/Text.h"

#include <QtTest>

#include <optional>

using namespace std::chrono_literals;
using cloud::Session;
using cloud::Stage;
using std::chrono::milliseconds;

namespace {

// Time passes only in pass(). Stages pass at once, but one that is told to fail or to be silent.
class World final : public Session::World
{
public:
    void begin(Stage stage) override
    {
        began += QString::number(cloud::statusOf(stage));
        if (stage != stops)
            session.passed(stage);
        else if (!isSilent)
            session.failed(stage, "broken");
    }
    void end() override {}
    void wakeAfter(milliseconds time) override { m_due = m_now + time; }
    Session::Clock::time_point now() override { return m_now; }
    double chance() override { return luck; }
    void tell(int status, const std::string &) override { told += QString::number(status) + u' '; }

    // Lets time pass; begun stages are in `began`.
    void pass(milliseconds time)
    {
        const auto end = m_now + time;
        while (m_due <= end) {
            m_now = m_due;
            m_due = Session::Clock::time_point::max();
            session.woken();
        }
        m_now = end;
    }
    // How long until something begins, 0 for never in ten minutes.
    milliseconds untilBegin()
    {
        began.clear();
        for (milliseconds waited = 0ms; waited <= 10min; waited += 100ms, pass(100ms))
            if (!began.isEmpty())
                return waited;
        return 0ms;
    }

    Session session{*this};
    std::optional<Stage> stops;
    bool isSilent = false;
    double luck = 1;
    QString began;
    QString told;

private:
    Session::Clock::time_point m_now{1h};
    Session::Clock::time_point m_due = Session::Clock::time_point::max();
};

} // namespace

class SessionTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void aStageThatFailsIsToldAndTriedAgain()
    {
        const std::tuple<Stage, QString, QString> expected[] = {
            {Stage::Time, "-2"_s, "0 -2 0 1 "_s},
            {Stage::Certificate, "-2-3"_s, "0 -3 0 1 "_s},
            {Stage::Server, "-2-3-4"_s, "0 -4 0 1 "_s},
            {Stage::Subscription, "-2-3-4-5"_s, "0 -5 1 "_s}};
        for (const auto &[stage, began, told] : expected) {
            for (const bool silent : {false, true}) {
                World world;
                world.stops = stage;
                world.isSilent = silent;
                world.session.start();
                world.pass(silent ? 8s : 0s);
                QCOMPARE(world.began, began);
                world.stops.reset();
                world.pass(2s);
                QCOMPARE(world.told, told);
                world.session.failed(Stage::Time, "of a try that is over");
                QCOMPARE(world.session.status(), 1);
            }
        }
    }

    // Whatever has failed for however long in the first quarter of an hour: once it works again,
    // the next try comes soon enough for half a minute with the try itself.
    void pausesGrowToABound()
    {
        World world;
        world.stops = Stage::Server;
        world.session.start();
        for (const milliseconds pause : {2000ms, 4000ms, 8000ms, 16000ms, 18000ms, 18000ms})
            QCOMPARE(world.untilBegin().count(), pause.count());
        world.luck = 0;
        world.pass(18s);
        QCOMPARE(world.untilBegin().count(), (9000ms).count());
        world.luck = 1;
        world.pass(15min);
        world.began.clear();
        QVERIFY(world.untilBegin() <= 60s);
        QCOMPARE(world.untilBegin().count(), milliseconds(60s).count());
    }

    void aServerThatClosesAtOnceIsNotHammered()
    {
        World world;
        world.session.start();
        world.began.clear();
        for (int second = 0; second < 600; ++second) {
            if (world.session.isStanding())
                world.session.lost("closed");
            world.pass(1s);
        }
        QVERIFY2(world.began.count("-4"_s) <= 40, qPrintable(world.began));
        // One that has stood for a while begins at the beginning.
        world.pass(60s);
        QCOMPARE(world.session.status(), 1);
        world.session.lost("restarted");
        QCOMPARE(world.session.status(), -4);
        QCOMPARE(world.untilBegin().count(), milliseconds(2s).count());
    }

    void aChangeOfTheNetworkHastens()
    {
        World world;
        world.stops = Stage::Time;
        world.session.start();
        for (int i = 0; i < 4; ++i)
            world.untilBegin();
        world.pass(6s);
        world.session.networkChanged();
        QCOMPARE(world.untilBegin().count(), milliseconds(1s).count());
        // A network that changes all the time.
        world.began.clear();
        for (int i = 0; i < 600; ++i) {
            world.session.networkChanged();
            world.pass(100ms);
        }
        QVERIFY(world.began.count("-2"_s) <= 12);
        // During a try that the change makes useless.
        world.isSilent = true;
        world.untilBegin();
        world.session.networkChanged();
        QCOMPARE(world.untilBegin().count(), milliseconds(9s).count());
    }
};

QTEST_GUILESS_MAIN(SessionTest)
#include "SessionTest.moc"
