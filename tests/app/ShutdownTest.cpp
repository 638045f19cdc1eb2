#include "app/Shutdown.h"

#include "app/PlatformCallbacks.h"

#include <QMouseEvent>
#include <QPushButton>
#include <QtTest>

#include <future>

class ShutdownTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingReachesAWidget()
    {
        QPushButton page;
        int reached = 0;
        int others = 0;
        const auto reach = [&] { ++reached; };
        connect(&page, &QPushButton::pressed, this, reach);
        QCoreApplication::postEvent(&page, new QMouseEvent(QEvent::MouseButtonPress, {1, 1},
                                                           Qt::LeftButton, Qt::LeftButton, {}));
        QTimer timer(&page);
        connect(&timer, &QTimer::timeout, reach);
        timer.start(0);
        const auto call = [&] {
            QMetaObject::invokeMethod(&page, reach, Qt::BlockingQueuedConnection);
            QMetaObject::invokeMethod(
                this, [&] { ++others; }, Qt::BlockingQueuedConnection);
        };
        const auto thread = std::async(std::launch::async, call);
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

QTEST_MAIN(ShutdownTest)
#include "ShutdownTest.moc"
