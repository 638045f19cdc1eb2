#include "network/NetWorkTestTexts.h"

#include "tests/support/PanelRoot.h"
#include "tests/support/Text.h"

#include <QtTest>

namespace {

const QString FOLDER = "/mnt/tarni/app/hmiapp/bin/NetWorkTest/"_s;
const QString ENGLISH = FOLDER + "NetWorkTest_en.json"_s;
constexpr const char *CABLE =
    R"({"EthConnect": {"ItemString": "Cable", "Solution": "Plug it in"}})";

} // namespace

class NetWorkTestTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void readsItemFiles()
    {
        // what the file holds | what a look for the cable's item gives | its advice
        const std::tuple<QByteArray, int, QByteArray> files[] = {
            {CABLE, 0, "Plug it in"},
            {"", LOOKUP_NO_FILE, ""},
            {QByteArray(CABLE).chopped(5), LOOKUP_NO_FILE, ""},
            {CABLE + QByteArray(50000000, ' '), LOOKUP_NO_FILE, ""},
            {"[]", LOOKUP_NO_FILE, ""},
            {QByteArray("\0\xff\xfe", 3), LOOKUP_NO_FILE, ""},
            {QByteArray(100000, '['), LOOKUP_NO_FILE, ""},
            {R"({"Eth": {"Solution": "x"}})", LOOKUP_NO_OBJECT, ""},
            {R"({"EthConnect": "x"})", LOOKUP_NO_OBJECT, ""},
            {R"({"EthConnect": {"Solution": 7, "failure": {}}})", 0, ""},
            {"{\"EthConnect\": {\"Solution\": \"" + QByteArray(900000, 'x') + "\"}}", 0,
             QByteArray(500, 'x')}};
        for (const auto &[content, found, solution] : files) {
            m_root.write(ENGLISH, content);
            QCOMPARE(m_texts.load(1), found != LOOKUP_NO_FILE);
            NetWorkTestText text;
            QCOMPARE(m_texts.find(ITEM_ETH_CABLE, text), found);
            QCOMPARE(text.solution, QString::fromUtf8(solution));
            QVERIFY(text.failure.isEmpty());
        }
        // what is left of the last: it has no item but one
        NetWorkTestText text;
        for (const auto &[item, code] : {std::pair(30, -4), {31, -3}, {32, -2}, {-1, -3}})
            QCOMPARE(m_texts.find(item, text), code);
        QVERIFY(!m_texts.load(2)); // no such file, and nothing left of the one before
        QCOMPARE(m_texts.find(ITEM_ETH_CABLE, text), -1);
        m_root.clear();
        QVERIFY(!m_texts.load(1));
        m_root.write(ENGLISH + "/a"_s, ""); // a folder of that name
        QVERIFY(!m_texts.load(1));
    }

    void itemFilesAreComplete()
    {
        m_root.clear();
        for (const int language : {0, 1}) {
            const QString name = "NetWorkTest_%1.json"_s.arg(language == 0 ? "ch"_s : "en"_s);
            QFile source(QStringLiteral(ITEM_FILES "/") + name);
            QVERIFY(source.open(QIODevice::ReadOnly));
            m_root.write(FOLDER + name, source.readAll());
            QVERIFY(m_texts.load(language));
            for (int item = 0; item < NETWORK_TEST_KEY_COUNT; ++item) {
                NetWorkTestText text;
                QCOMPARE(m_texts.find(item, text), 0);
                for (const QString &said : {text.title, text.success, text.failure, text.solution})
                    QVERIFY2(!said.isEmpty() && said.size() < 250, qPrintable(said));
                QCOMPARE(text.solution.at(0).script() == QChar::Script_Han, language == 0);
            }
        }
    }

private:
    PanelRoot m_root;
    NetWorkTestTexts m_texts;
};

QTEST_GUILESS_MAIN(NetWorkTestTextsTest)
#include "NetWorkTestTextsTest.moc"
