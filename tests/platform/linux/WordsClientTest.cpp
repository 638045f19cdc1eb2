#include "platform/linux/WordsClient.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "tests/words/WordsDaemon.h"

#include <QtNetwork/QTcpServer>

#include <atomic>
#include <csignal>
#include <thread>

using board::WordsClient;

namespace {

constexpr std::chrono::milliseconds TIMEOUT(200);
constexpr int BYTE_PAUSE = 50;       // ms
constexpr unsigned int PAIR = 10590; // 600 and 100 at first
constexpr unsigned int NOT_SERVED = 100;

// Answers every request with the same bytes, slowly if it is to; without any it hangs up.
class WrongService
{
public:
    WrongService(quint16 port, const QByteArray &reply, bool drips)
        : m_thread([=] { serve(port, reply, drips); })
    {
        while (!m_bServes)
            std::this_thread::yield();
    }
    ~WrongService()
    {
        m_bServes = false;
        m_thread.join();
    }
    Q_DISABLE_COPY(WrongService)

private:
    void serve(quint16 port, const QByteArray &reply, bool drips)
    {
        QTcpServer server;
        m_bServes = server.listen(QHostAddress::LocalHost, port);
        while (m_bServes) {
            server.waitForNewConnection(5);
            const std::unique_ptr<QTcpSocket> client(server.nextPendingConnection());
            while (m_bServes && client && !reply.isEmpty() &&
                   client->waitForReadyRead(BYTE_PAUSE)) {
                client->readAll();
                for (int at = 0; at < reply.size(); at += drips ? 1 : reply.size()) {
                    client->write(reply.mid(at, drips ? 1 : -1));
                    client->waitForBytesWritten(BYTE_PAUSE);
                    QThread::msleep(drips ? BYTE_PAUSE : 0);
                }
            }
        }
    }

    std::atomic<bool> m_bServes{false};
    std::thread m_thread;
};

} // namespace

// A client lives as long as the process: its thread is never joined.
class WordsClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_service = std::make_unique<WordsDaemon>();
        QVERIFY(m_service->start());
        m_service->writeFile("/etc/sysset/panel.conf"_s, // the same port from now on
                             "[words]\nport=" + QByteArray::number(m_service->port()));
        static auto &clients = *new std::vector<WordsClient *>;
        m_client = clients.emplace_back(new WordsClient(m_service->port(), TIMEOUT));
    }
    void cleanup() { m_wrong.reset(); }

    void transfersWords()
    {
        unsigned short words[] = {5, 50};
        QVERIFY(m_client->write(PAIR, words, 2) && m_client->coil(0));
        words[1] = 0;
        QVERIFY(m_client->read(PAIR, words, 2));
        QVERIFY(words[0] == 5 && words[1] == 50);
    }

    // fault | least and most milliseconds that eighty words cost together, words that are there
    void startIsNotHeldUp_data()
    {
        rows({"none | 0 | 150 | 80", "dead | 0 | 150 | 0", "silent | 200 | 350 | 0",
              "reply 485454502f312e310d0a0d0a | 0 | 350 | 0",
              "reply 0001000000050103020258 | 0 | 350 | 0",     // one word of two
              "reply 00020000000701030402580064 | 0 | 350 | 0", // of another request
              "drip 00010000000701030402580064 | 200 | 350 | 0", "hang up | 0 | 350 | 0"});
    }
    void startIsNotHeldUp()
    {
        befall(cell(0));
        QElapsedTimer timer;
        timer.start();
        int read = 0;
        for (int i = 0; i < 80; ++i) {
            unsigned short words[2] = {7, 7};
            read += m_client->read(PAIR, words, 2) ? 1 : 0;
            QVERIFY(words[0] == (read > i ? 600 : 7) && words[1] == (read > i ? 100 : 7));
        }
        const auto elapsed = timer.elapsed();
        QVERIFY2(elapsed >= number(1) && elapsed <= number(2), QByteArray::number(elapsed));
        QCOMPARE(read, number(3));
    }

    // Neither a refusal nor a restart between two requests is seen by the next.
    void goesOn()
    {
        unsigned short word = 7;
        QVERIFY(m_client->read(PAIR, &word, 1));
        QVERIFY(!m_client->read(NOT_SERVED, &word, 1) && word == 600);
        QVERIFY(m_client->read(PAIR, &word, 1));
        m_service->cutPower();
        QVERIFY(m_service->start());
        QVERIFY(m_client->read(PAIR, &word, 1));
    }

private:
    void befall(const QString &fault)
    {
        const QString kind = fault.section(u' ', 0, 0);
        if (kind == "silent"_s)
            ::kill(static_cast<pid_t>(m_service->pid()), SIGSTOP);
        else if (kind != "none"_s)
            m_service->cutPower();
        if ("reply drip hang"_s.contains(kind))
            m_wrong = std::make_unique<WrongService>(
                m_service->port(), QByteArray::fromHex(fault.section(u' ', 1).toLatin1()),
                kind == "drip"_s);
    }

    std::unique_ptr<WordsDaemon> m_service;
    std::unique_ptr<WrongService> m_wrong;
    WordsClient *m_client = nullptr;
};

QTEST_GUILESS_MAIN(WordsClientTest)
#include "WordsClientTest.moc"
