#include "app/Shutdown.h"

#include "app/PlatformCallbacks.h"

#include <QMouseEvent>
#include <QtTest>
#include <QWidget>

#include <future>

class Page : public QWidget
{
    Q_OBJECT

public:
    bool event(QEvent *event) override
    {
        reached += event->type() == QEvent::MetaCall || event->type() == QEvent::Timer ||
                           event->type() == QEvent::MouseButtonPress
                       ? 1
                       : 0;
        return QWidget::event(event);
    }
    int reached = 0;

signals:
    void call();
};

class ShutdownTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingReachesAPage()
    {
        Page page;
        connect(&page, &Page::call, &page, [] {}, Qt::BlockingQueuedConnection);
        const auto thread = std::async(std::launch::async, [&] { emit page.call(); });
        page.startTimer(0);
        QTimer timer(&page);
        connect(&timer, &QTimer::timeout, &page, [&] { ++page.reached; });
        timer.start(0);
        QCoreApplication::postEvent(&page, new QMouseEvent(QEvent::MouseButtonPress, {1, 1},
                                                           Qt::LeftButton, Qt::LeftButton, {}));
        int others = 0;
        QMetaObject::invokeMethod(
            this, [&] { ++others; }, Qt::QueuedConnection);

        const auto stopThread = [&](int waitMs) {
            return thread.wait_for(std::chrono::milliseconds(waitMs)) == std::future_status::ready;
        };
        bool told = false; // the first ends only after the last has been told to
        const auto stopFirst = [&](int) { return told; };
        const auto tell = [&](int) { return told = true; };
        QVERIFY(stopAll({stopFirst, stopThread, tell}, [] { QFAIL("nothing takes long"); }));
        QCOMPARE(page.reached, 0);
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
