#include "platform/control/ControlListener.h"

#include "platform/control/UiDriver.h"

#include <QTimer>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace control {
namespace {

constexpr int LONGEST_LINE = 1 << 20;
constexpr int BLOCK = 64 * 1024;
constexpr int BACKLOG = 16;

std::string uiReply(const Request &request)
{
    try {
        return okReply(runUiRequest(request));
    } catch (const std::exception &error) {
        return errorReply(error.what());
    }
}

QString lastError()
{
    return QString::fromLocal8Bit(std::strerror(errno)); // NOLINT(concurrency-mt-unsafe)
}

} // namespace

// --- The listening socket -----------------------------------------------------------------------

ControlListener::~ControlListener()
{
    if (m_socket != -1)
        close(m_socket);
}

QString ControlListener::listen(const QString &path)
{
    const QByteArray name = path.toLocal8Bit();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.size() >= static_cast<int>(sizeof address.sun_path))
        return QStringLiteral("the path is too long for a socket"); // unix(7)
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    unlink(name.constData());
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    // The mode is set before bind(2) makes the file, so that others can never connect.
    if (m_socket == -1 || fchmod(m_socket, S_IRUSR | S_IWUSR) == -1 ||
        bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == -1 ||
        ::listen(m_socket, BACKLOG) == -1)
        return lastError();
    auto *incoming = new QSocketNotifier(m_socket, QSocketNotifier::Read, this);
    connect(incoming, &QSocketNotifier::activated, this, &ControlListener::acceptClients);
    return {};
}

void ControlListener::acceptClients()
{
    const int client = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client != -1)
        new ControlClient(client, m_access, this);
}

// --- One connection -----------------------------------------------------------------------------

ControlClient::ControlClient(int socket, const Access &access, QObject *parent)
    : QObject(parent),
      m_access(access),
      m_socket(socket),
      m_readable(socket, QSocketNotifier::Read),
      m_writable(socket, QSocketNotifier::Write)
{
    m_writable.setEnabled(false);
    connect(&m_readable, &QSocketNotifier::activated, this, &ControlClient::receive);
    connect(&m_writable, &QSocketNotifier::activated, this, &ControlClient::transmit);
}

ControlClient::~ControlClient()
{
    if (m_pending)
        *m_pending = false;
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    close(m_socket);
}

void ControlClient::receive()
{
    char block[BLOCK];
    const ssize_t count = read(m_socket, block, sizeof block);
    if (count > 0)
        m_received.append(block, static_cast<int>(count));
    else if (count == 0 || (errno != EAGAIN && errno != EINTR))
        m_isEof = true;
    proceed();
}

void ControlClient::transmit()
{
    const ssize_t count = ::send(m_socket, m_toSend.constData(),
                                 static_cast<std::size_t>(m_toSend.size()), MSG_NOSIGNAL);
    if (count >= 0)
        m_toSend.remove(0, static_cast<int>(count));
    else if (errno != EAGAIN && errno != EINTR)
        return deleteLater();
    proceed();
}

// Serves one request after the other, the next one only when the reply to the one before is sent:
// a client that does not read its replies fills no memory.
void ControlClient::proceed()
{
    while (!m_pending && m_toSend.isEmpty() && takeLine())
        continue;
    const bool busy = m_pending || !m_toSend.isEmpty();
    m_readable.setEnabled(!m_isEof && !busy);
    m_writable.setEnabled(!m_toSend.isEmpty());
    if (m_isEof && !busy)
        deleteLater();
}

// Takes a line, or what has come of a line that is too long, from what was received. Returns false
// if no whole line is left.
bool ControlClient::takeLine()
{
    const int end = m_received.indexOf('\n');
    const bool isTooLong = end > LONGEST_LINE || (end == -1 && m_received.size() > LONGEST_LINE);
    if (end == -1 && !isTooLong && !m_isSkipping)
        return false;
    const QByteArray line = m_received.left(end);
    m_received.remove(0, end == -1 ? m_received.size() : end + 1);
    if (isTooLong && !m_isSkipping)
        send(errorReply("the line is too long"));
    else if (!m_isSkipping)
        serve(line);
    m_isSkipping = end == -1;
    return end != -1;
}

void ControlClient::serve(const QByteArray &line)
{
    try {
        const Request request = parseRequest(line.toStdString());
        if (isUiRequest(request))
            askGui(request);
        else
            send(okReply((*m_access.panel)(request)));
    } catch (const std::exception &error) {
        send(errorReply(error.what()));
    }
}

void ControlClient::askGui(const Request &request)
{
    m_pending = std::make_shared<std::atomic<bool>>(true);
    // In the control thread. The destructor gives the request up, so `this` lives while it is
    // pending.
    const auto finish = [this, pending = m_pending](const std::string &reply) {
        if (!pending->exchange(false))
            return;
        m_pending.reset();
        send(reply);
        proceed();
    };
    QTimer::singleShot(m_access.timeout, this,
                       [finish] { finish(errorReply("the panel does not answer")); });
    m_access.gui->post([request, finish, pending = m_pending, control = m_access.control] {
        if (!*pending)
            return;
        control->post([finish, reply = uiReply(request)] { finish(reply); });
    });
}

// Sends at once what the other side takes at once; transmit() does the rest.
void ControlClient::send(const std::string &reply)
{
    const ssize_t count = ::send(m_socket, reply.data(), reply.size(), MSG_NOSIGNAL);
    if (count < static_cast<ssize_t>(reply.size())) {
        const std::size_t sent = count < 0 ? 0 : static_cast<std::size_t>(count);
        m_toSend.append(reply.data() + sent, static_cast<int>(reply.size() - sent));
    }
}

} // namespace control
