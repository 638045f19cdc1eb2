#include "network/NetExtend.h"

#include "tests/support/Calls.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QComboBox>
#include <QPushButton>

#include <thread>

class NetExtendTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        sim::panel().reset();
        m_page = std::make_unique<NetExtend>();
        m_combo = m_page->findChild<QComboBox *>("combox"_s);
    }

    void asksUntilItIsAnswered()
    {
        sim::panel().fail("netT.getDevPriority", -2);
        refresh();
        sim::panel().clearFailures();
        sim::panel().set("net.priority", "");
        refresh();
        QCOMPARE(index(), -1);
        m_combo->setCurrentIndex(1);
        QCOMPARE(callsOf("netT.setDevPriority"), QStringList({"[\"WIFI\",false,5000]"_s}));
        m_combo->setCurrentIndex(-1); // no choice: asks the service, which has taken the one before
        QCoreApplication::processEvents();
        QCOMPARE(index(), 1);
        QCOMPARE(callsOf("netT.setDevPriority").size(), 2); // the echo
        refresh();
        QCOMPARE(callsOf("netT.getDevPriority").join(QLatin1Char(' ')),
                 "[true,5000] [true,5000] [true,5000]"_s);
        m_page->retranslate();
        QCOMPARE(callsOf("netT.setDevPriority").size(), 2);
        QCOMPARE(index(), 1);
    }

    void shows_data() { rows({"ETH | 0", "WIFI | 1", "4G | 2", "LAN | -1"}); }

    void shows()
    {
        sim::panel().set("net.priority", cell(0).toStdString());
        refresh();
        QCOMPARE(index(), number(1));
        sim::panel().set("net.priority", "WIFI"); // the first answer is the only one
        refresh();
        QCOMPARE(index(), number(1));
        QCOMPARE(callsOf("netT.getDevPriority").size(), 1);
    }

    void keepsAChoiceMadeDuringTheQuestion()
    {
        sim::panel().delay("netT.getDevPriority", 200);
        std::thread asking([this] { m_page->refreshPriority(); });
        QTest::qWait(50); // the question is on its way
        m_combo->setCurrentIndex(2);
        sim::panel().set("net.priority", "WIFI"); // an answer from before the choice
        asking.join();
        QCoreApplication::processEvents();
        QCOMPARE(index(), 2);
        QCOMPARE(callsOf("netT.setDevPriority"), QStringList("[\"4G\",false,5000]"_s));
    }

private:
    // As the cloud monitor does it, on a thread of its own.
    void refresh()
    {
        std::thread([this] { m_page->refreshPriority(); }).join();
        QCoreApplication::processEvents();
    }

    int index() { return m_combo->currentIndex(); }

    std::unique_ptr<NetExtend> m_page;
    QComboBox *m_combo = nullptr;
};

// The question counts as answered for a whole process, so that every case has one of its own.
int main(int argc, char **argv)
{
    if (argc > 1) {
        QApplication application(argc, argv);
        NetExtendTest test;
        return QTest::qExec(&test, argc, argv);
    }
    int failed = 0;
    for (const char *name : {"asksUntilItIsAnswered", "shows:ETH | 0", "shows:WIFI | 1",
                             "shows:4G | 2", "shows:LAN | -1", "keepsAChoiceMadeDuringTheQuestion"})
        failed += QProcess::execute(QString::fromLocal8Bit(argv[0]), {QLatin1String(name)}) != 0;
    return failed;
}

#include "NetExtendTest.moc"
