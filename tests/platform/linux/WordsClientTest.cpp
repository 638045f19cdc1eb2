#include "platform/linux/WordsClient.h"

#include "tests/platform/linux/ModbusPeer.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QElapsedTimer>

using board::WordsClient;

namespace {

constexpr std::chrono::milliseconds TIMEOUT(200);
constexpr int WORDS_AT_START = 80;

} // namespace

// A client lives as long as the process: its thread is never joined.
class WordsClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_peer = std::make_unique<ModbusPeer>();
        m_peer->start(ModbusPeer::Answers);
        static auto &clients = *new std::vector<WordsClient *>;
        m_client = clients.emplace_back(new WordsClient(m_peer->port(), TIMEOUT));
    }

    void transfersWords()
    {
        unsigned short words[11] = {};
        QVERIFY(m_client->read(10061, words, 11));
        QCOMPARE(words[0], 10061);
        QCOMPARE(words[10], 10071);
        QVERIFY(m_client->write(28, words, 6) && m_client->coil(0));
    }

    // address | count: what no request can carry, or no address has
    void refusesWhatIsNoRange_data() { rows({"1 | 0", "1 | 126", "65535 | 2", "-1 | 1"}); }
    void refusesWhatIsNoRange()
    {
        std::vector<unsigned short> words(200, 7);
        QVERIFY(!m_client->read(static_cast<unsigned int>(number(0)), words.data(), number(1)));
        QVERIFY(!m_client->write(static_cast<unsigned int>(number(0)), words.data(), number(1)));
        QCOMPARE(words[0], 7);
        QCOMPARE(m_peer->requests(), 0);
    }

    // manner | least | most milliseconds that eighty words cost together, words that are there
    void startIsNotHeldUp_data()
    {
        rows({"answers | 0 | 150 | 80", "silent | 200 | 350 | 0", "nonsense | 0 | 350 | 0",
              "too few | 0 | 350 | 0", "drips | 200 | 350 | 0", "refuses | 0 | 150 | 0",
              "hangs up | 0 | 150 | 0", "dead | 0 | 150 | 0"});
    }
    void startIsNotHeldUp()
    {
        const QStringList manners =
            "answers,silent,nonsense,too few,drips,refuses,hangs up"_s.split(u',');
        const int manner = manners.indexOf(cell(0));
        if (manner == -1)
            m_peer->stop();
        else
            m_peer->behave(static_cast<ModbusPeer::Manner>(manner));
        QElapsedTimer timer;
        timer.start();
        int read = 0;
        for (int i = 0; i < WORDS_AT_START; ++i) {
            unsigned short words[2] = {7, 7};
            read += m_client->read(100, words, 2) ? 1 : 0;
            QVERIFY(words[0] == (read > i ? 100 : 7) && words[1] == (read > i ? 101 : 7));
        }
        const auto elapsed = timer.elapsed();
        QVERIFY2(elapsed >= number(1) && elapsed <= number(2), QByteArray::number(elapsed));
        QCOMPARE(read, number(3));
    }

    void answersOfRefusalKeepTheConnection()
    {
        unsigned short word = 0;
        m_peer->behave(ModbusPeer::Refuses);
        QVERIFY(!m_client->read(1, &word, 1));
        m_peer->behave(ModbusPeer::Answers);
        QVERIFY(m_client->read(1, &word, 1));
    }

    // A restart between two requests is not even seen.
    void goesOnAfterARestart()
    {
        unsigned short word = 0;
        QVERIFY(m_client->read(5, &word, 1));
        m_peer->start(ModbusPeer::Answers);
        QVERIFY(m_client->read(5, &word, 1));
    }

    void comesBackByItself_data() { rows({"dead", "silent", "nonsense"}); }
    void comesBackByItself()
    {
        unsigned short word = 0;
        if (cell(0) == "dead"_s)
            m_peer->stop();
        else
            m_peer->behave(cell(0) == "silent"_s ? ModbusPeer::Silent : ModbusPeer::Nonsense);
        QVERIFY(!m_client->read(9, &word, 1));
        QTest::qWait(600); // of vain questions
        m_peer->start(ModbusPeer::Answers);
        QTRY_VERIFY_WITH_TIMEOUT(m_client->read(9, &word, 1), 2000);
        QCOMPARE(word, 9);
    }

private:
    std::unique_ptr<ModbusPeer> m_peer;
    WordsClient *m_client = nullptr;
};

QTEST_GUILESS_MAIN(WordsClientTest)
#include "WordsClientTest.moc"
