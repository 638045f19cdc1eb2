#include "app/Shutdown.h"

#include "platform/board.h"
#include "platform/cos_time.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QInputEvent>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

constexpr int STOP_MS = 9000; // every request but a ping ends within eight seconds
constexpr int TELL_AFTER_MS = 1000;
constexpr int SLICE_MS = 20;
constexpr int BEFORE_REBOOT_MS = 500;

bool isOfWidget(const QObject *object)
{
    while (object != nullptr && !object->isWidgetType())
        object = object->parent();
    return object != nullptr;
}

// A page that went on would call the panel again or open a box. A thread that waits for its call
// goes on when the call's event is destroyed.
class WidgetsAtRest : public QObject
{
public:
    explicit WidgetsAtRest(QCoreApplication *application) : QObject(application)
    {
        application->installEventFilter(this);
    }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        const bool call = event->type() == QEvent::MetaCall || event->type() == QEvent::Timer;
        return (call && isOfWidget(receiver)) ||
               dynamic_cast<const QInputEvent *>(event) != nullptr;
    }
};

} // namespace

bool stopAll(const std::vector<Stop> &running, const std::function<void()> &takesLong)
{
    new WidgetsAtRest(QCoreApplication::instance());
    QElapsedTimer timer;
    timer.start();
    bool told = false;
    for (const Stop &stop : running)
        stop(0);
    for (const Stop &stop : running) {
        while (!stop(SLICE_MS)) {
            if (timer.elapsed() > STOP_MS)
                return false;
            if (!told && timer.elapsed() > TELL_AFTER_MS) {
                told = true;
                takesLong();
            }
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        }
    }
    return true;
}

void syncDisks()
{
    sync();
    COS::CosTime::SleepCos(BEFORE_REBOOT_MS);
}

void reboot(int hardware, bool quiet)
{
    my_reboot(hardware);
    if (quiet)
        std::exit(0); // NOLINT(concurrency-mt-unsafe): no other thread of the program is left
    std::fflush(nullptr);
    std::quick_exit(0);
}
