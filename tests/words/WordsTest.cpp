#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "tests/words/WordsDaemon.h"

#include <QtNetwork/QTcpSocket>

const QString BRIGHTNESS = "10591*1"_s;

class WordsTest : public QObject
{
    Q_OBJECT

private slots:
    // Requests with their answers.
    void answers_data()
    {
        rows({
            "10591=1>ok 10591*1>1 10590=0,100>ok 10590*2>0,100 10590=3600,50>ok 10590*2>3600,50",
            "10591=0>!3 10591=101>!3 10591*1>100 10590=3601>!3 10590=5,101>!3 10590*2>600,100",
            "10590=5,5,5>!2 10589=5,5>!2 10590*2>600,100", // all or none
            "10612=1,5,1000>ok 10612*3>1,5,1000",
            "10612=2>!3 10613=0>!3 10613=6>!3 10614=1001>!3 10612*3>0,3,100",
            "10061=6,21,7,2,4,1000,1000,10,20,25,25>ok 10061*11>6,21,7,2,4,1000,1000,10,20,25,25",
            "10120=0,0,0,0,0,0,0,0,0,0,0>ok 10120*1>0",
            "10061=4>!3 10062=22>!3 10063=6>!3 10064=3>!3 10065=5>!3 10061*5>0,3,8,1,0",
            "10068=11>!3 10069=21>!3 10070=256>!3 10068*3>3,2,1",
            "10115*2>!2 10115*1>1", // behind it the words of no port
            "65535*2>!2 0*1>!2 28*7>!2 27*1>!2",
            "28=2024,1,1,0,0>!2 33=5>!2", // the clock is set whole
            "28=1999,12,31,23,59,59>!3 28=2038,1,1,0,0,0>!3 28=2023,2,29,0,0,0>!3",
            "28=2024,4,31,0,0,0>!3 28=2024,13,1,0,0,0>!3 28=2024,1,1,24,0,0>!3",
            "#0100000001>010101 #0100000002>!2 #0100010001>!2 #0500000000>!1 #2b0e0100>!1 #17>!1",
            "#03295f0000>!3 #03295f007e>!3 #10295f0001030032>!3 #10295f000102003232>!3",
            "#10295f0000>!3 #06295f>!3 #06295f0032>06295f0032 #10295f0001020033>10295f0001",
        });
    }
    void answers()
    {
        WordsDaemon daemon;
        QVERIFY(daemon.start());
        for (const QString &exchange : cell(0).split(u' '))
            QCOMPARE(exchange.section(u'>', 0, 0) + ">"_s +
                         daemon.ask(exchange.section(u'>', 0, 0)),
                     exchange);
        QVERIFY(daemon.stop());
    }

    // Bursts are joined: a drag of two seconds is some ten generations. A second after the last
    // write it is kept, and at once when the service is stopped.
    void sparesTheDiskAndKeeps()
    {
        WordsDaemon daemon;
        QVERIFY(daemon.start());
        QElapsedTimer time;
        time.start();
        int percent = 0;
        while (time.elapsed() < 2000) {
            percent = percent % 100 + 1;
            QCOMPARE(daemon.ask("10591=%1"_s.arg(percent)), "ok"_s);
            QTest::qWait(10);
        }
        QTest::qWait(1000);
        daemon.cutPower();
        const QByteArray kept = daemon.readFile("/mnt/data/sysset/words/words.0"_s) +
                                daemon.readFile("/mnt/data/sysset/words/words.1"_s);
        const QRegularExpression line("generation (\\d+)"_s);
        const int number = line.match(QString::fromLatin1(kept)).captured(1).toInt();
        QVERIFY2(number >= 3 && number <= 13, qPrintable(QString::number(number)));
        QVERIFY(daemon.start());
        QCOMPARE(daemon.ask(BRIGHTNESS), QString::number(percent));
        QCOMPARE(daemon.ask("10591=61"_s), "ok"_s);
        QVERIFY(daemon.stop());
        QVERIFY(daemon.start());
        QCOMPARE(daemon.ask(BRIGHTNESS), "61"_s);
    }

    // Bytes in hexadecimal that a client sends, how often it comes; whether it is thrown out.
    void survivesBadClients_data()
    {
        rows({
            " | 40 | ",                           // more than there is room for
            "00010000 | 1 | out",                 // half a header
            "0001000000060103 | 1 | out",         // and nothing more
            "000100010006010300000001 | 1 | out", // another protocol
            "00010000000001 | 1 | out",           // no length
            "0001000000010300 | 1 | out",         // no function
            "00010000ffff0103 | 1 | out",         // too long
            "474554202f20485454502f312e310d0a0d0a | 1 | out",
            "000100000006010327650037 | 300 | ", // and never reads the answers
        });
    }
    void survivesBadClients()
    {
        WordsDaemon daemon;
        QVERIFY(daemon.start());
        std::vector<std::unique_ptr<QTcpSocket>> clients;
        const bool floods = number(1) > 100;
        for (int i = 0; i < (floods ? 1 : number(1)); ++i) {
            clients.push_back(std::make_unique<QTcpSocket>());
            clients.back()->setReadBufferSize(1);
            clients.back()->connectToHost(QHostAddress::LocalHost, daemon.port());
            QVERIFY(clients.back()->waitForConnected());
        }
        QTcpSocket &client = *clients.back();
        client.write(QByteArray::fromHex(cell(0).toLatin1()).repeated(floods ? 200000 : 1));
        client.flush();
        QElapsedTimer time;
        time.start();
        for (int i = 0; i < 200; ++i)
            QCOMPARE(daemon.ask(BRIGHTNESS), "100"_s);
        QVERIFY2(time.elapsed() < 1000, qPrintable(QString::number(time.elapsed())));
        if (!cell(2).isEmpty())
            QTRY_COMPARE_WITH_TIMEOUT(client.state(), QTcpSocket::UnconnectedState, 3000);
        QCOMPARE(daemon.ask(BRIGHTNESS), "100"_s);
        QVERIFY(daemon.stop());
    }

    // The bytes of a request one by one, two requests at once.
    void takesFramesAsTheyCome()
    {
        WordsDaemon daemon;
        QVERIFY(daemon.start());
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, daemon.port());
        QVERIFY(client.waitForConnected());
        const auto request =
            QByteArray::fromHex("000700000006010329600001000800000006010329600001");
        for (const char byte : request.left(12)) {
            client.write(&byte, 1);
            QTest::qWait(20);
        }
        client.write(request.mid(12) + request);
        QTRY_COMPARE(client.bytesAvailable(), qint64{36});
    }

    // Whether the clock may be set, and how many lines are said about the file.
    void readsPanelFile_data()
    {
        rows({"clock=no | 010100 | 0", "clock=maybe | 010101 | 1", "address=0.0.0.0 | 010101 | 1",
              "port=99999 | 010101 | 1", "nonsense | 010101 | 1"});
    }
    void readsPanelFile()
    {
        WordsDaemon daemon;
        daemon.writeFile("/etc/sysset/panel.conf"_s,
                         "[other]\nclock=no\n[words]\nport=0\n" + cell(0).toLatin1());
        QVERIFY(daemon.start());
        QCOMPARE(daemon.ask("#0100000001"_s), cell(1));
        QCOMPARE(daemon.said("panel.conf"), number(2));
        if (cell(1) == "010100"_s)
            QCOMPARE(daemon.ask("28=2024,1,1,0,0,0"_s), "!4"_s);
    }
};

QTEST_GUILESS_MAIN(WordsTest)
#include "WordsTest.moc"
