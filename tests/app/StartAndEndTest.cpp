#include "app/CommandLine.h"
#include "app/PlatformCallbacks.h"
#include "app/Shutdown.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"

#include <QPushButton>

#include <future>

class StartAndEndTest : public QObject
{
    Q_OBJECT

private slots:
    // words behind the program's name | exit status, none if it starts | first words printed
    void answers_data()
    {
        rows({"--help | 0 | usage: panel [OPTION]", "--version | 0 | panel 0.",
              "x --help | 0 | usage", "--version --help | 0 | panel", "-x | 2 |",
              "--platforms x | 2 |", "-pw x | 2 |", "-d x --help | 0 | usage", "-- | 2 |",
              // Words, options of the program's own, and what they take.
              "||", "help version - x ||", "-p ||", "x -d ||", "-p --help ||", "-d -x ||",
              "-p -d -x ||", "y -x -p z ||", "-x y -p z | 2 |", "x -x -p | 2 |",
              // Qt's, with one dash or with two, and what they take.
              "-platform -x ||", "--style fusion -style=fusion ||", "-stylesheet=x -reverse ||",
              "-platform offscreen -x | 2 |", "-style x y -x -p z ||"});
    }
    void answers()
    {
        QByteArrayList words = ("/usr/bin/panel " + cell(0).toLatin1()).trimmed().split(' ');
        std::vector<char *> argv;
        for (QByteArray &word : words)
            argv.push_back(word.data());
        std::optional<int> status;
        const QByteArray printed =
            printedBy([&] { status = answerCommandLine(int(argv.size()), argv.data()); });
        QCOMPARE(status ? QString::number(*status) : QString(), cell(1));
        QVERIFY2(printed.startsWith(cell(2).toLatin1()), printed);
        QCOMPARE(printed.isEmpty(), cell(2).isEmpty());
    }

    // The end of the program begins, and input, a timer and calls of another thread come.
    void nothingReachesAWidget()
    {
        QPushButton page;
        int reached = 0;
        int others = 0;
        const auto reach = [&] { ++reached; };
        connect(&page, &QPushButton::pressed, this, reach);
        QCoreApplication::postEvent(&page, new QKeyEvent(QEvent::KeyPress, Qt::Key_Space, {}));
        QTimer timer(&page);
        connect(&timer, &QTimer::timeout, reach);
        timer.start(0);
        const auto thread = std::async(std::launch::async, [&] {
            QMetaObject::invokeMethod(&page, reach, Qt::BlockingQueuedConnection);
            QMetaObject::invokeMethod(
                this, [&] { ++others; }, Qt::BlockingQueuedConnection);
        });
        const auto stopThread = [&](int waitMs) {
            return thread.wait_for(std::chrono::milliseconds(waitMs)) == std::future_status::ready;
        };
        bool told = false; // the first ends only after the last has been told to
        const auto stopFirst = [&](int) { return told; };
        const auto tell = [&](int) { return told = true; };
        QVERIFY(stopAll({stopFirst, stopThread, tell}, [] { QFAIL("nothing takes long"); }));
        QCOMPARE(reached, 0);
        QCOMPARE(others, 1);
    }

    void callbacksLeaveTheWindowAlone()
    {
        QVERIFY(stopCallbacks(0));
        std::vector<netT::stAllNetInfo_tag> records;
        char noWindow = 0;
        QCOMPARE(OnUdiskAdd({}, &noWindow), -1);
        QCOMPARE(getAllNetInfo(records, &noWindow), -1);
    }
};

QTEST_MAIN(StartAndEndTest)
#include "StartAndEndTest.moc"
