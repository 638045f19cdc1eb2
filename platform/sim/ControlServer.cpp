#include "platform/sim/ControlServer.h"

#include "platform/sim/ControlListener.h"

namespace sim {
namespace {

// The thread never waits for the GUI thread, so it ends at once unless the machine is overloaded.
constexpr unsigned long stopPatienceMs = 2000;

} // namespace

bool ControlServer::start(const QString &socketPath)
{
    stop();
    listener_ = new ControlListener;
    listener_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, listener_, &QObject::deleteLater);
    thread_.setObjectName(QStringLiteral("control"));
    thread_.start();
    bool listening = false;
    QMetaObject::invokeMethod(
        listener_,
        [&] {
            listening = listener_->listen(socketPath);
            errorString_ = listening ? QString() : listener_->errorString();
        },
        Qt::BlockingQueuedConnection);
    if (!listening)
        stop();
    return listening;
}

void ControlServer::stop()
{
    if (listener_ == nullptr)
        return;
    thread_.quit();
    thread_.wait(stopPatienceMs);
    listener_ = nullptr;
}

} // namespace sim
