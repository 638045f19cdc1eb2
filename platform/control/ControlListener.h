#pragma once

#include "platform/control/Mailbox.h"
#include "platform/control/Request.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

namespace control {

// The way from a connection to the panel, and to the GUI thread and back.
struct Access
{
    const Handler *panel; // lives as long as the listener
    Mailbox *gui;         // lives in the GUI thread, longer than the connection
    Mailbox *control;     // lives in the control thread, longer than a request at the GUI thread
    std::chrono::milliseconds timeout;
};

// The listening socket; lives in the control thread. Bare sockets rather than Qt's: its network
// library would add 0.8 MiB to the program's memory (docs/decisions/0006-start-and-memory.md).
class ControlListener : public Mailbox
{
    Q_OBJECT

public:
    ControlListener(const Handler &panel, Mailbox &gui, std::chrono::milliseconds guiTimeout)
        : m_access{&panel, &gui, this, guiTimeout}
    {
    }
    ~ControlListener() override;

    // Listens at `path`, open to this user alone. Returns an empty text, or why it cannot.
    QString listen(const QString &path);

private:
    void acceptClients();

    const Access m_access;
    int m_socket = -1;
};

// One connection; deletes itself when it ends. Lives in the control thread.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    // Takes the socket, which must not block.
    ControlClient(int socket, const Access &access, QObject *parent);
    ~ControlClient() override;

private:
    // A request at the GUI thread: true until it is answered or given up.
    using PendingRequest = std::shared_ptr<std::atomic<bool>>;

    void receive();
    void transmit();
    void proceed();
    bool takeLine();
    void serve(const QByteArray &line);
    void askGui(const Request &request);
    void send(const std::string &reply);

    const Access m_access;
    const int m_socket;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QByteArray m_received;     // requests not yet served
    QByteArray m_toSend;       // the part of a reply that is not sent yet
    bool m_isSkipping = false; // within a line that is too long
    bool m_isEof = false;      // the other side sends no more
    PendingRequest m_pending;
};

} // namespace control
