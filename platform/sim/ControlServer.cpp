#include "platform/sim/ControlServer.h"

#include "platform/sim/ControlListener.h"

#include <future>

namespace sim {
namespace {

// The thread never waits for the GUI thread, so it ends at once unless the machine is overloaded.
constexpr unsigned long stopPatienceMs = 2000;

} // namespace

bool ControlServer::start(const QString &socketPath)
{
    stop();
    listener_ = new ControlListener(guiPatience_);
    listener_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, listener_, &QObject::deleteLater);
    thread_.setObjectName(QStringLiteral("control"));
    thread_.start();
    std::promise<bool> listens;
    const auto listen = [&] {
        const bool done = listener_->listen(socketPath);
        errorString_ = done ? QString() : listener_->errorString();
        listens.set_value(done);
    };
    QMetaObject::invokeMethod(listener_, listen, Qt::QueuedConnection);
    const bool listening = listens.get_future().get();
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
