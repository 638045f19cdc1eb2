#include "platform/sim/ControlListener.h"

#include "platform/sim/UiDriver.h"

#include <QTimer>

namespace sim {
namespace {

constexpr qint64 longestLine = 1 << 20;

std::string uiReply(const Request &request)
{
    try {
        return okReply(runUiRequest(request));
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
        new ControlClient(socket, access_, this);
}

ControlClient::ControlClient(QLocalSocket *socket, const GuiAccess &access, QObject *parent)
    : QObject(parent), access_(access), socket_(socket)
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
        *errand_ = false;
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
            askGui(request);
        else
            send(okReply(runRequest(request)));
    } catch (const BadRequest &error) {
        send(errorReply(error.what()));
    }
}

void ControlClient::askGui(const Request &request)
{
    errand_ = std::make_shared<std::atomic<bool>>(true);
    // Both in the control thread; an errand that is still open has its connection still.
    const auto finish = [this, errand = errand_](const std::string &reply) {
        if (errand->exchange(false))
            finishErrand(reply);
    };
    QTimer::singleShot(access_.patience, this,
                       [finish] { finish(errorReply("the panel does not answer")); });
    access_.gui->post([request, finish, errand = errand_, control = access_.control] {
        if (!*errand)
            return;
        control->post([finish, reply = uiReply(request)] { finish(reply); });
    });
}

void ControlClient::finishErrand(const std::string &reply)
{
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
