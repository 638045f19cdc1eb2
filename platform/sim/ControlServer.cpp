#include "platform/sim/ControlServer.h"

#include "platform/sim/ControlListener.h"
#include "platform/sim/Root.h"

#include <cstdlib>
#include <iostream>

namespace sim {
namespace {

// The thread never waits for the GUI thread, so it ends at once unless the machine is overloaded.
constexpr unsigned long stopPatienceMs = 2000;

ControlServer &programServer()
{
    static ControlServer &server = *new ControlServer;
    return server;
}

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

bool serveControl()
{
    ControlServer &server = programServer();
    if (!server.start(QString::fromStdString(socketPath()))) {
        std::cerr << "sysset-sim: cannot listen at " << socketPath() << ": "
                  << server.errorString().toStdString() << std::endl;
        return false;
    }
    std::atexit([] { programServer().stop(); });
    std::cerr << "panel ready" << std::endl;
    return true;
}

} // namespace sim
