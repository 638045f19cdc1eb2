#include "platform/sim/ControlListener.h"

#include "platform/sim/UiDriver.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace sim {
namespace {

constexpr qint64 longestLine = 1024 * 1024;

// What `work` comes to, as a reply.
std::string replyOf(const std::function<Json()> &work)
{
    try {
        return okReply(work());
    } catch (const std::exception &error) {
        return errorReply(error.what());
    }
}

} // namespace

bool ControlListener::listen(const QString &socketPath)
{
    connect(server_, &QLocalServer::newConnection, this, &ControlListener::acceptClients);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(socketPath);
    return server_->listen(socketPath);
}

void ControlListener::acceptClients()
{
    while (QLocalSocket *socket = server_->nextPendingConnection())
        new ControlClient(socket, guiPatience_, this);
}

ControlClient::ControlClient(QLocalSocket *socket, std::chrono::milliseconds guiPatience,
                             QObject *parent)
    : QObject(parent), guiPatience_(guiPatience), socket_(socket)
{
    socket_->setParent(this);
    socket_->setReadBufferSize(longestLine + 1);
    connect(socket_, &QLocalSocket::readyRead, this, &ControlClient::readRequests);
    connect(socket_, &QLocalSocket::disconnected, this, &QObject::deleteLater);
    readRequests();
}

ControlClient::~ControlClient()
{
    if (errand_)
        errand_->open = false;
}

void ControlClient::readRequests()
{
    while (!errand_ && socket_->canReadLine())
        serve(socket_->readLine());
    if (errand_ || socket_->canReadLine() || socket_->bytesAvailable() <= longestLine)
        return;
    send(errorReply("the line is too long"));
    socket_->disconnectFromServer();
}

void ControlClient::serve(const QByteArray &line)
{
    try {
        const Request request = parseRequest(line.toStdString());
        if (isUiRequest(request))
            askGui([request] { return runUiRequest(request); });
        else
            send(okReply(runRequest(request)));
    } catch (const BadRequest &error) {
        send(errorReply(error.what()));
    }
}

void ControlClient::askGui(std::function<Json()> work)
{
    errand_ = std::make_shared<Errand>();
    const auto errand = errand_;
    const auto finish = [this, errand](const std::string &reply) { finishErrand(errand, reply); };
    QTimer::singleShot(guiPatience_, this,
                       [finish] { finish(errorReply("the panel does not answer")); });
    // The GUI thread may answer when this connection is gone: then the answer goes nowhere.
    const auto inGui = [work = std::move(work), errand, finish, self = QPointer<QObject>(this),
                        listener = QPointer<QObject>(parent())] {
        if (!errand->open || !listener)
            return;
        const std::string reply = replyOf(work);
        QMetaObject::invokeMethod(
            listener,
            [finish, self, reply] {
                if (self)
                    finish(reply);
            },
            Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), inGui, Qt::QueuedConnection);
}

void ControlClient::finishErrand(const std::shared_ptr<Errand> &errand, const std::string &reply)
{
    if (!errand->open.exchange(false))
        return;
    errand_.reset();
    send(reply);
    readRequests();
}

void ControlClient::send(const std::string &reply)
{
    socket_->write(reply.data(), static_cast<qint64>(reply.size()));
    socket_->flush();
}

} // namespace sim
