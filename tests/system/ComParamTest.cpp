#include "system/RuntimeWord.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/system/PortWords.h"

namespace {

constexpr unsigned int BASE = 10061;
const QString SAMPLE = "RS422,1200,8,1,NONE,20,100,3,2,1,1"_s;

} // namespace

class ComParamTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { sim::panel().reset(); }

    // text to write | result | the word then, 100 before | whether the runtime refuses
    void wordAsText_data()
    {
        rows({"65535 | 0 | 65535", "007 | 0 | 7", "65536 | 0 | 0", "ten | 0 | 0", " | -1 | 100",
              "1 | -2 | 100 | refuses"});
    }
    void wordAsText()
    {
        constexpr unsigned int ADDRESS = 10591;
        if (!cellOrEmpty(3).isEmpty())
            sim::panel().fail("backstage.AddrWrite", -5);
        const QByteArray printed =
            printedBy([] { QCOMPARE(writeWord(ADDRESS, cell(0)), number(1)); });
        const QRegularExpression traced(
            R"(^\[\d+\]\{SetAddrData\} Write dwAddr = 10591 Data is %1\n$)"_s.arg(cell(2)));
        QVERIFY(cell(1) == "0"_s ? traced.match(QString::fromLatin1(printed)).hasMatch()
                                 : printed.isEmpty());
        unsigned short read = 0;
        QCOMPARE(readWord(ADDRESS, read), 0);
        QCOMPARE(int(read), number(2));
        setWords(ADDRESS, "x"_s);
        QCOMPARE(readWord(ADDRESS, read), -1);
        QCOMPARE(int(read), number(2)); // untouched
    }

    // words, "x" where the runtime refuses | text, BLANKS for white space | result of the read, and
    // of a write of that text
    void reads_data()
    {
        rows({"2 0 8 1 0 20 100 3 2 1 1 | RS422,1200,8,1,NONE,20,100,3,2,1,1 | 0 0",
              "6 0 8 1 0 20 100 3 2 1 1 | RS485_2,1200,8,1,NONE,20,100,3,2,1,1 | 0 0",
              "4 0 8 1 0 20 100 3 2 1 1 | RS485_2,1200,8,1,NONE,20,100,3,2,1,1 | 0 0",
              "2 11 8 1 0 20 100 3 2 1 1 | RS422,BLANKS500000,8,1,NONE,20,100,3,2,1,1 | 0 0",
              ("3 21 65535 65535 4 65535 65535 65535 65535 65535 65535 | "
               "NULL,4000000,65535,65535,Mark,65535,65535,65535,65535,65535,65535 | 0 0"),
              "5 0 8 1 0 20 100 3 2 1 1 | ?5,1200,8,1,NONE,20,100,3,2,1,1 | 0 -3",
              "2 22 8 1 0 20 100 3 2 1 1 | RS422,?22,8,1,NONE,20,100,3,2,1,1 | 0 -4",
              "2 9600 8 1 0 20 100 3 2 1 1 | RS422,?9600,8,1,NONE,20,100,3,2,1,1 | 0 -4",
              "2 0 8 1 7 20 100 3 2 1 1 | RS422,1200,8,1,?7,20,100,3,2,1,1 | 0 -5",
              "0 0 0 0 0 0 0 0 0 0 0 | RS232,1200,0,0,NONE,0,0,0,0,0,0 | -3 0",
              "0 0 0 0 0 20 100 3 2 1 1 | RS232,1200,0,0,NONE,20,100,3,2,1,1 | -3 0",
              "2 0 x 1 0 20 100 3 2 1 1 | RS422,1200,0,0,NONE,0,0,0,0,0,0 | -2 0",
              "2 0 8 1 0 20 100 x 2 1 1 | RS422,1200,8,1,NONE,20,100,0,0,0,0 | -2 0",
              "x 0 8 1 0 20 100 3 2 1 1 | RS232,1200,0,0,NONE,0,0,0,0,0,0 | -3 0"});
    }
    void reads()
    {
        setWords(BASE, cell(0));
        const ComParamLists lists;
        QString text;
        bool complete = false;
        const int read = lists.readPort(BASE, text, &complete);
        QCOMPARE(text, cell(1).replace("BLANKS"_s, "\t\t\t\t\t\t  "_s));
        QCOMPARE(complete, !cell(0).contains(u'x'));
        QCOMPARE("%1 %2"_s.arg(read).arg(lists.writePort(BASE, text)), cell(2));
        if (complete && !cell(0).startsWith(u'4')) // 4 is written as 6
            QCOMPARE(portWords(BASE), cell(0));
    }

    // text | result of its write | the words then, if it was written
    void writes_data()
    {
        rows({"RS422,500000,8,1,NONE,20,100,3,2,1,1 | -4", // without the white space
              "RS422,1200,8,1,NONE,20,100,3,2,1 | -2", "RS422,1200,8,1,NONE,20,100,3,2,1,1,1 | -2",
              " | -2", "rs422,1200,8,1,NONE,20,100,3,2,1,1 | -3", "x,x,8,1,x,0,0,0,0,0,0 | -3",
              "NULL,x,8,1,x,0,0,0,0,0,0 | -4", "RS422,1200,8,1,MARK,20,100,3,2,1,1 | -5",
              "RS422,1200,8,1,NONE,,x,-1,65536,1,1 | 0 | 2 0 8 1 0 0 0 0 0 1 1"});
    }
    void writes()
    {
        const QString before = portWords(BASE);
        QCOMPARE(ComParamLists().writePort("COM1-1"_s, cell(0)), number(1));
        QCOMPARE(portWords(BASE), cellOrEmpty(2).isEmpty() ? before : cellOrEmpty(2));
    }

    // Around the four words that belong to no port: the simulated runtime does not take them.
    void writesWhatTheRuntimeTakes_data()
    {
        rows({"10112 | -6 | 2 0 8 1 x x x x 2 1 1", "10111 | -7 | 2 0 8 1 0 x x x x 1 1",
              "10119 | -6 | x 0 8 1 0 20 100 3 2 1 1"});
    }
    void writesWhatTheRuntimeTakes()
    {
        const unsigned int base = cell(0).toUInt();
        QCOMPARE(ComParamLists().writePort(base, SAMPLE), number(1));
        QCOMPARE(portWords(base), cell(2));
    }

    // Words to text, and back over a port that was cleared, for every item of the lists.
    void keepsEveryItem_data()
    {
        rows({"COM1-1 | 10061", "COM2-1 | 10072", "COM3 | 10083", "COM1-2 | 10094",
              "COM2-2 | 10105", "COM1-3 | 10120"});
    }
    void keepsEveryItem()
    {
        const unsigned int base = cell(1).toUInt();
        const ComParamLists lists;
        for (int i = 0; i < 22; ++i) {
            const int connection = i % 5 == 4 ? 6 : i % 5;
            const QString words =
                "%1 %2 8 1 %3 1 2 3 4 5 %4"_s.arg(connection).arg(i).arg(i / 5).arg(i);
            QString text;
            setWords(base, words);
            QCOMPARE(lists.readPort(cell(0), text), 0);
            setWords(base, "9 9 9 9 9 9 9 9 9 9 9"_s);
            printedBy([&] { QCOMPARE(lists.writePort(cell(0), text), 0); });
            QCOMPARE(portWords(base), words);
        }
    }

    void knowsNoOtherPort()
    {
        sim::panel().clearCalls();
        for (const QString &name : {"COM4"_s, "com3"_s, QString(), "COM1"_s}) {
            QString text = "untouched"_s;
            QCOMPARE(ComParamLists().readPort(name, text), -2);
            QCOMPARE(text, "untouched"_s);
            QCOMPARE(ComParamLists().writePort(name, SAMPLE), -2);
        }
        QVERIFY(sim::panel().calls().empty());
    }
};

QTEST_GUILESS_MAIN(ComParamTest)
#include "ComParamTest.moc"
