#include "system/ComParam.h"

#include "platform/runtime.h"
#include "platform/sim/Panel.h"
#include "system/RuntimeWord.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QtTest>

namespace {

using Words = QVector<int>;

constexpr unsigned int BASE = 10061;
constexpr const char *BLANKS = "\t\t\t\t\t\t  ";

const Words SAMPLE = {2, 0, 8, 1, 0, 20, 100, 3, 2, 1, 1};
const QString SAMPLE_TEXT = "RS422,1200,8,1,NONE,20,100,3,2,1,1"_s;

std::string path(unsigned int address)
{
    return "words." + std::to_string(address);
}

Words portWords(unsigned int base)
{
    Words words;
    for (unsigned int i = 0; i < COM_FIELDS; ++i) {
        unsigned short word = 0;
        words << (backstage_AddrRead(base + i, &word, 1) == 0 ? word : -1);
    }
    return words;
}

// The sample with some of its words changed.
Words with(const QMap<int, int> &changes)
{
    Words words = SAMPLE;
    for (auto it = changes.begin(); it != changes.end(); ++it)
        words[it.key()] = it.value();
    return words;
}

QString withField(int field, const QString &text)
{
    QStringList fields = SAMPLE_TEXT.split(QLatin1Char(','));
    fields[field] = text;
    return fields.join(QLatin1Char(','));
}

// How many combinations of list items, of all, a port keeps: words to text and back, and the text
// again.
int combinationsKept(const QString &name, unsigned int base, int all)
{
    const ComParamLists lists;
    const std::vector<unsigned short> other(COM_FIELDS, 9);
    int kept = 0;
    for (int i = 0; i < all; ++i) {
        const int connection = i / 110 == 4 ? 6 : i / 110;
        const Words words = {connection, i / 5 % 22, 8, 1, i % 5, 1, 2, 3, 4, 5, i};
        const std::vector<unsigned short> stored(words.begin(), words.end());
        QString text;
        QString again;
        backstage_AddrWrite(base, stored.data(), COM_FIELDS);
        const int read = lists.readPort(name, text);
        backstage_AddrWrite(base, other.data(), COM_FIELDS);
        const int written = lists.writePort(name, text);
        lists.readPort(base, again);
        if (read == 0 && written == 0 && portWords(base) == words && again == text)
            ++kept;
        sim::panel().clearCalls();
    }
    return kept;
}

} // namespace

class ComParamTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { sim::panel().reset(); }
    void wordAsText_data();
    void wordAsText();
    void wordThatTheRuntimeRefuses();
    void reads_data();
    void reads();
    void writes_data();
    void writes();
    void writesWhatTheRuntimeTakes();
    void keepsEveryCombination();
    void knowsNoOtherPort();
};

void ComParamTest::wordAsText_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("word"); // then; 80 before
    QTest::newRow("65535") << 0 << 65535;
    QTest::newRow("007") << 0 << 7;
    QTest::newRow("65536") << 0 << 0;
    QTest::newRow("ten") << 0 << 0;
    QTest::newRow("") << -1 << 100;
}

void ComParamTest::wordAsText()
{
    QFETCH(int, result);
    QFETCH(int, word);
    constexpr unsigned int ADDRESS = 10591;
    const QString text = QLatin1String(QTest::currentDataTag());
    const QByteArray printed = printedBy([&] { QCOMPARE(writeWord(ADDRESS, text), result); });
    const QRegularExpression traced(
        R"(^\[\d+\]\{SetAddrData\} Write dwAddr = 10591 Data is %1\n$)"_s.arg(word));
    QCOMPARE(traced.match(QString::fromLatin1(printed)).hasMatch(), result == 0);
    QString read;
    QCOMPARE(readWord(ADDRESS, read), 0);
    QCOMPARE(read, QString::number(word));
}

void ComParamTest::wordThatTheRuntimeRefuses()
{
    sim::panel().set(path(BASE), nullptr);
    QString read = "80"_s;
    QCOMPARE(readWord(BASE, read), -1);
    QVERIFY(read.isEmpty());
    sim::panel().fail("backstage.AddrWrite", -5);
    QCOMPARE(printedBy([] { QCOMPARE(writeWord(BASE, "1"_s), -2); }), QByteArray());
}

void ComParamTest::reads_data()
{
    QTest::addColumn<Words>("words"); // -1: refused
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("rewritten"); // result of a write of that text
    const auto row = [](const char *name, const Words &words, const QString &text, int result,
                        int rewritten) {
        QTest::newRow(name) << words << text << result << rewritten;
    };
    row("sample", SAMPLE, SAMPLE_TEXT, 0, 0);
    row("RS485_2 is 6", with({{0, 6}}), withField(0, "RS485_2"_s), 0, 0);
    row("and 4", with({{0, 4}}), withField(0, "RS485_2"_s), 0, 0);
    row("baud item with blanks", with({{1, 11}}), withField(1, QLatin1String(BLANKS) + "500000"_s),
        0, 0);
    row("largest words", {3, 21, 65535, 65535, 4, 65535, 65535, 65535, 65535, 65535, 65535},
        "NULL,4000000,65535,65535,Mark,65535,65535,65535,65535,65535,65535"_s, 0, 0);
    row("connection 5", with({{0, 5}}), withField(0, "?5"_s), 0, -3);
    row("connection 9", with({{0, 9}}), withField(0, "?9"_s), 0, -3);
    row("baud 22", with({{1, 22}}), withField(1, "?22"_s), 0, -4);
    row("baud 9600 is not index 3", with({{1, 9600}}), withField(1, "?9600"_s), 0, -4);
    row("baud 65535", with({{1, 65535}}), withField(1, "?65535"_s), 0, -4);
    row("parity 7", with({{4, 7}}), withField(4, "?7"_s), 0, -5);
    row("not in use", Words(COM_FIELDS, 0), "RS232,1200,0,0,NONE,0,0,0,0,0,0"_s, -3, 0);
    row("time-outs alone", {0, 0, 0, 0, 0, 20, 100, 3, 2, 1, 1},
        "RS232,1200,0,0,NONE,20,100,3,2,1,1"_s, -3, 0);
    row("word 2 not read", with({{2, -1}}), "RS422,1200,0,0,NONE,0,0,0,0,0,0"_s, -2, 0);
    row("word 7 not read", with({{7, -1}}), "RS422,1200,8,1,NONE,20,100,0,0,0,0"_s, -2, 0);
    row("word 0 not read", with({{0, -1}}), "RS232,1200,0,0,NONE,0,0,0,0,0,0"_s, -3, 0);
}

void ComParamTest::reads()
{
    QFETCH(Words, words);
    for (int i = 0; i < COM_FIELDS; ++i) {
        const sim::Json word = words[i] < 0 ? sim::Json() : sim::Json(words[i]);
        sim::panel().set(path(BASE + static_cast<unsigned int>(i)), word);
    }
    const ComParamLists lists;
    QString text;
    bool complete = false;
    QTEST(lists.readPort(BASE, text, &complete), "result");
    QTEST(text, "text");
    QCOMPARE(complete, !words.contains(-1));
    QTEST(lists.writePort(BASE, text), "rewritten");
    if (complete && words[0] != 4) // 4 is written as 6
        QCOMPARE(portWords(BASE), words);
}

void ComParamTest::writes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("result");
    QTest::addColumn<Words>("words");
    QTest::newRow("baud item without blanks") << withField(1, "500000"_s) << -4 << Words();
    QTest::newRow("ten fields") << SAMPLE_TEXT.left(SAMPLE_TEXT.size() - 2) << -2 << Words();
    QTest::newRow("twelve fields") << SAMPLE_TEXT + ",1"_s << -2 << Words();
    QTest::newRow("empty") << QString() << -2 << Words();
    QTest::newRow("connection in small letters") << withField(0, "rs422"_s) << -3 << Words();
    QTest::newRow("connection first") << "x,x,8,1,x,0,0,0,0,0,0"_s << -3 << Words();
    QTest::newRow("baud before parity") << "NULL,x,8,1,x,0,0,0,0,0,0"_s << -4 << Words();
    QTest::newRow("parity") << withField(4, "MARK"_s) << -5 << Words();
    QTest::newRow("no numbers") << "RS422,1200,8,1,NONE,,x,-1,65536,1,1"_s << 0
                                << with({{5, 0}, {6, 0}, {7, 0}, {8, 0}});
}

void ComParamTest::writes()
{
    QFETCH(QString, text);
    QFETCH(int, result);
    QFETCH(Words, words);
    const Words before = portWords(BASE);
    QCOMPARE(ComParamLists().writePort("COM1-1"_s, text), result);
    QCOMPARE(portWords(BASE), result == 0 ? words : before);
}

// Around the four words that belong to no port: the simulated runtime does not take them.
void ComParamTest::writesWhatTheRuntimeTakes()
{
    const ComParamLists lists;
    QCOMPARE(lists.writePort(10112U, SAMPLE_TEXT), -6);
    QCOMPARE(portWords(10112), Words({2, 0, 8, 1, -1, -1, -1, -1, 2, 1, 1}));
    QCOMPARE(lists.writePort(10111U, SAMPLE_TEXT), -7);
    QCOMPARE(portWords(10111), Words({2, 0, 8, 1, 0, -1, -1, -1, -1, 1, 1}));
    QCOMPARE(lists.writePort(10119U, SAMPLE_TEXT), -6);
    QCOMPARE(portWords(10119), Words({-1, 0, 8, 1, 0, 20, 100, 3, 2, 1, 1}));
}

void ComParamTest::keepsEveryCombination()
{
    constexpr int COMBINATIONS = 5 * 22 * 5;
    for (const auto &[name, base] :
         {std::pair{"COM1-1", 10061U}, std::pair{"COM2-1", 10072U}, std::pair{"COM3", 10083U},
          std::pair{"COM1-2", 10094U}, std::pair{"COM2-2", 10105U}, std::pair{"COM1-3", 10120U}}) {
        int kept = 0;
        printedBy([&, port = QString::fromLatin1(name), first = base] {
            kept = combinationsKept(port, first, COMBINATIONS);
        });
        QCOMPARE(kept, COMBINATIONS);
    }
}

void ComParamTest::knowsNoOtherPort()
{
    sim::panel().clearCalls();
    for (const QString &name : {"COM4"_s, "com3"_s, QString(), "COM1"_s}) {
        QString text = "untouched"_s;
        QCOMPARE(ComParamLists().readPort(name, text), -2);
        QCOMPARE(text, "untouched"_s);
        QCOMPARE(ComParamLists().writePort(name, SAMPLE_TEXT), -2);
    }
    QVERIFY(sim::panel().calls().empty());
}

QTEST_GUILESS_MAIN(ComParamTest)
#include "ComParamTest.moc"
