#include "network/WifiConnection.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"

using Asked = WifiConnection::AskedBy;
using Search = WifiConnection::Search;

namespace {

constexpr std::int64_t NOW = 100000;
const netT::stApInfo_tag OFFICE = {1, 60, "Office", "", 4};
const netT::stApInfo_tag GUESTS = {2, 50, "Guests", "", 0};

QString named(WifiActions actions)
{
    QStringList names;
    unsigned action = STOP_WAITING;
    for (const char *name :
         {"stop", "wait", "hide", "ask", "show", "state", "take", "announce", "box"}) {
        if ((actions & action) != 0)
            names << QLatin1String(name);
        action <<= 1U;
    }
    return names.join(u' ');
}

} // namespace

class WifiConnectionTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_wifi = std::make_unique<WifiConnection>();
        m_wifi->setVisible(true);
        m_wifi->setDevice(true, true);
    }

    void answers_data()
    {
        // the state before | to 0 2 4 6 | to 1 | to 3 | to 5 | to 7 | no news after a time-out
        rows({"4 |      | take | take | announce | take |",
              "1 | take |      | take | announce | take | wait",
              "3 | take | take |      | announce | take | wait",
              "7 | take | take | take | announce | take |",
              "5 |      | take | take |          | take |"});
    }

    void answers()
    {
        for (const auto &[state, column] :
             {std::pair(0, 1), {2, 1}, {4, 1}, {6, 1}, {1, 2}, {3, 3}, {5, 4}, {7, 5}}) {
            const QString news = cell(column);
            QCOMPARE(answer(state, Asked::Record), news);
            QCOMPARE(answer(state, Asked::TimeOut), news.isEmpty() ? cell(6) : news);
        }
        QCOMPARE(answer({}, Asked::Record), "wait"_s);
        QCOMPARE(answer({}, Asked::TimeOut), QString());
        QCOMPARE(answer(8, Asked::Record), QString());
        m_wifi->setVisible(false);
        QCOMPARE(named(m_wifi->answered(5, Asked::Record, NOW)), QString());
    }

    void takes_data()
    {
        // state | actions | once seen, if it was taken unseen | scans | polls
        rows({"0 | stop hide | | scans | polls", "2 | stop hide | | scans | polls",
              "4 | stop hide | | scans | polls", "6 | stop hide | | scans | polls",
              "1 | wait ask | ask | scans | polls", "3 | wait ask | ask | | polls",
              "7 | stop ask | ask | scans | polls", "5 | stop hide box | | scans |",
              "8 | | | scans | polls", "-1 | | | scans | polls"});
    }

    void takes()
    {
        QCOMPARE(named(m_wifi->take(number(0))), cell(1));
        QCOMPARE(m_wifi->mayScan(), !cell(3).isEmpty());
        QCOMPARE(m_wifi->pollTicket().has_value(), !cell(4).isEmpty());
        QCOMPARE(named(m_wifi->setVisible(true)), QString()); // it has been asked for
        m_wifi->failureRead();
        m_wifi->setVisible(false);
        QCOMPARE(named(m_wifi->take(number(0))), QString(cell(1)).remove(" ask"_s));
        QCOMPARE(named(m_wifi->timedOut()), "wait"_s);
        QCOMPARE(named(m_wifi->setVisible(true)), cell(2));
        QCOMPARE(named(m_wifi->timedOut()), "state"_s);
        QCOMPARE(named(m_wifi->leaveDevice()), "stop hide"_s);
        QCOMPARE(named(m_wifi->timedOut()), QString());
    }

    void asksForTheName()
    {
        m_wifi->take(7);
        QCOMPARE(named(m_wifi->named({})), "wait"_s);
        QCOMPARE(named(m_wifi->named("Office")), "show"_s);
        QCOMPARE(named(m_wifi->named({})), "show"_s);
        m_wifi->pollFailed(*m_wifi->pollTicket()); // meanwhile
        QCOMPARE(named(m_wifi->named("Office")), QString());
    }

    void passesThroughNoNetworkOnItsWay()
    {
        m_wifi->beginJoin();
        m_wifi->joined(OFFICE, true, NOW);
        m_wifi->take(3);
        QCOMPARE(named(m_wifi->answered(2, Asked::Record, NOW + 15000)), QString());
        QCOMPARE(named(m_wifi->answered(2, Asked::TimeOut, NOW + 15000)), "wait"_s);
        QCOMPARE(named(m_wifi->answered(2, Asked::Record, NOW + 15001)), "take"_s);
        QVERIFY(!m_wifi->mayJoin(GUESTS, NOW + 400));
        QVERIFY(m_wifi->mayJoin(GUESTS, NOW + 401));
        QVERIFY(!m_wifi->mayJoin({}, NOW + 401)); // hides its name
        m_wifi->take(7);
        m_wifi->take(3); // by itself
        QCOMPARE(named(m_wifi->answered(2, Asked::Record, NOW + 1)), "take"_s);
    }

    // state between the answer of a poll and the page's taking of it | what comes of the failure
    void announcedFailures_data() { rows({"-1 | box", "7 | void", "0 | void", "5 | told"}); }

    void announcedFailures()
    {
        m_wifi->take(3);
        const auto ticket = m_wifi->pollTicket();
        QVERIFY(m_wifi->pollFailed(*ticket));
        QVERIFY(!m_wifi->pollFailed(*ticket)); // once
        m_wifi->take(number(0));
        QCOMPARE(failure(), cell(1));
        m_wifi->take(3);
        QVERIFY(!m_wifi->isOvertaken(5)); // told or void, once
    }

    void pollsThatDoNotCount()
    {
        m_wifi->take(3);
        const auto ticket = m_wifi->pollTicket();
        m_wifi->setVisible(false);
        QVERIFY(!m_wifi->pollFailed(*ticket));
        m_wifi->setVisible(true);
        m_wifi->setDevice(false, false);
        QVERIFY(!m_wifi->pollFailed(*ticket));
        m_wifi->setDevice(true, true);
        QVERIFY(m_wifi->pollFailed(*ticket));
        m_wifi->beginJoin();
        m_wifi->joined(OFFICE, false, NOW); // refused: nothing to ask for
        QVERIFY(!m_wifi->pollTicket());
        m_wifi->joined(OFFICE, true, NOW);
        m_wifi->take(3);
        QVERIFY(!m_wifi->pollFailed(*ticket)); // the question is older than the join
        QVERIFY(m_wifi->pollFailed(*m_wifi->pollTicket()));
        QCOMPARE(failure(), "void"_s);
        QCOMPARE(failure(), "box"_s);
    }

    void lists()
    {
        QVERIFY(m_wifi->search() == Search::Running && !m_wifi->scanned(true, {}));
        QVERIFY(m_wifi->search() == Search::Failed);
        QVERIFY(m_wifi->scanned(false, {GUESTS, OFFICE, {3, 60, "Later", "", 0}}));
        QVERIFY(!m_wifi->scanned(false, {})); // changes nothing
        QCOMPARE(names(), "Office Later Guests"_s);
        QVERIFY(m_wifi->search() == Search::FoundNothing);
        m_wifi->take(7);
        m_wifi->named("Office");
        QCOMPARE(names(), "Later Guests"_s);
        QCOMPARE(m_wifi->level().value_or(-1), 60);
        QVERIFY(m_wifi->search() == Search::FoundNoOther);
        m_wifi->setDevice(true, false); // asked to change
        QVERIFY(!m_wifi->isWatched() && !m_wifi->scanned(false, {GUESTS}));
        m_wifi->leaveDevice();
        QVERIFY(names().isEmpty() && m_wifi->search() == Search::Running);
        m_wifi->scanned(false, {GUESTS}); // of a device that has gone
        m_wifi->setDevice(true, true);
        QCOMPARE(names(), "Office Later Guests"_s); // in store
        QVERIFY(m_wifi->search() == Search::Running && !m_wifi->level());
    }

private:
    QString answer(std::optional<int> state, Asked by)
    {
        init();
        m_wifi->take(number(0));
        return named(m_wifi->answered(state, by, NOW));
    }

    QString failure()
    {
        if (m_wifi->isOvertaken(5))
            return "void"_s;
        return (m_wifi->take(5) & SHOW_FAILURE) != 0 ? "box"_s : "told"_s;
    }

    QString names() const
    {
        QStringList all;
        m_wifi->withRows([&](const std::vector<netT::stApInfo_tag> &rows) {
            for (const auto &each : rows)
                all << QString::fromStdString(each.sSsid);
        });
        return all.join(u' ');
    }

    std::unique_ptr<WifiConnection> m_wifi;
};

QTEST_GUILESS_MAIN(WifiConnectionTest)
#include "WifiConnectionTest.moc"
