#include "platform/sim/ControlServer.h"

#include "platform/sim/ControlListener.h"

#include <future>

namespace sim {
namespace {

// The thread never waits for the GUI thread, so it ends at once unless the machine is overloaded.
constexpr unsigned long stopPatienceMs = 2000;

} // namespace

ControlServer::ControlServer(std::chrono::milliseconds guiPatience) : guiPatience_(guiPatience) {}

ControlServer::~ControlServer()
{
    stop();
}

bool ControlServer::start(const QString &socketPath)
{
    stop();
    gui_ = std::make_unique<Mailbox>();
    listener_ = new ControlListener(*gui_, guiPatience_);
    listener_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, listener_, &QObject::deleteLater);
    thread_.setObjectName(QStringLiteral("control"));
    thread_.start();
    std::promise<bool> listens;
    listener_->post([&] {
        const bool done = listener_->listen(socketPath);
        errorString_ = done ? QString() : listener_->errorString();
        listens.set_value(done);
    });
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
    if (!thread_.wait(stopPatienceMs))
        static_cast<void>(gui_.release()); // the thread may still use it
    gui_.reset();
    listener_ = nullptr;
}

} // namespace sim
