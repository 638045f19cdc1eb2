#pragma once

#include "platform/sim/Mailbox.h"
#include "platform/sim/Requests.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

namespace sim {

// What a connection needs to have something done on the GUI thread.
struct GuiAccess
{
    Mailbox *gui;     // lives in the GUI thread, longer than the connection
    Mailbox *control; // lives in the control thread, longer than work for the GUI thread
    std::chrono::milliseconds patience;
};

// The listening socket; lives in the control thread. Bare sockets rather than Qt's: its network
// library would add a thirtieth to the memory of a program that has no other use for it.
class ControlListener : public Mailbox
{
    Q_OBJECT

public:
    ControlListener(Mailbox &gui, std::chrono::milliseconds guiPatience)
        : m_access{&gui, this, guiPatience}
    {
    }
    ~ControlListener() override;

    // Listens at `path`, open to this user alone. Returns an empty text, or why it cannot.
    QString listen(const QString &path);

private:
    void acceptClients();

    const GuiAccess m_access;
    int m_socket = -1;
};

// One connection; deletes itself when it ends. Lives in the control thread.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    // Takes the socket, which must not block.
    ControlClient(int socket, const GuiAccess &access, QObject *parent);
    ~ControlClient() override;

private:
    // Work for the GUI thread; open until it is answered or given up.
    using Errand = std::shared_ptr<std::atomic<bool>>;

    void receive();
    void transmit();
    void proceed();
    bool takeLine();
    void serve(const QByteArray &line);
    void askGui(const Request &request);
    void send(const std::string &reply);

    const GuiAccess m_access;
    const int m_socket;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QByteArray m_received;     // requests not yet served
    QByteArray m_toSend;       // what the other side has not taken yet
    bool m_isSkipping = false; // the rest of a line that is too long
    bool m_isLast = false;     // nothing more comes
    Errand m_errand;
};

} // namespace sim
