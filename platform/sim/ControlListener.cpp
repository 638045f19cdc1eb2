#include "platform/sim/ControlListener.h"

#include "platform/sim/UiDriver.h"

#include <QTimer>

namespace sim {
namespace {

constexpr qint64 LONGEST_LINE = 1 << 20;

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
    connect(m_server, &QLocalServer::newConnection, this, &ControlListener::acceptClients);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(socketPath);
    return m_server->listen(socketPath);
}

void ControlListener::acceptClients()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection())
        new ControlClient(socket, m_access, this);
}

ControlClient::ControlClient(QLocalSocket *socket, const GuiAccess &access, QObject *parent)
    : QObject(parent), m_access(access), m_socket(socket)
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(LONGEST_LINE + 1);
    connect(m_socket, &QLocalSocket::readyRead, this, &ControlClient::readRequests);
    connect(m_socket, &QLocalSocket::disconnected, this, &QObject::deleteLater);
    readRequests();
}

ControlClient::~ControlClient()
{
    if (m_errand)
        *m_errand = false;
}

void ControlClient::readRequests()
{
    while (!m_errand && m_socket->canReadLine())
        serve(m_socket->readLine());
    if (m_errand || m_socket->canReadLine() || m_socket->bytesAvailable() <= LONGEST_LINE)
        return;
    send(errorReply("the line is too long"));
    m_socket->disconnectFromServer();
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
    m_errand = std::make_shared<std::atomic<bool>>(true);
    // Both in the control thread; an errand that is still open has its connection still.
    const auto finish = [this, errand = m_errand](const std::string &reply) {
        if (errand->exchange(false))
            finishErrand(reply);
    };
    QTimer::singleShot(m_access.patience, this,
                       [finish] { finish(errorReply("the panel does not answer")); });
    m_access.gui->post([request, finish, errand = m_errand, control = m_access.control] {
        if (!*errand)
            return;
        control->post([finish, reply = uiReply(request)] { finish(reply); });
    });
}

void ControlClient::finishErrand(const std::string &reply)
{
    m_errand.reset();
    send(reply);
    readRequests();
}

void ControlClient::send(const std::string &reply)
{
    m_socket->write(reply.data(), static_cast<qint64>(reply.size()));
    m_socket->flush();
}

} // namespace sim
