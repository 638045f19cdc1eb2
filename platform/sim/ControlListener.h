#pragma once

#include "platform/sim/Mailbox.h"
#include "platform/sim/Requests.h"

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>

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

// The listening socket; lives in the control thread.
class ControlListener : public Mailbox
{
    Q_OBJECT

public:
    ControlListener(Mailbox &gui, std::chrono::milliseconds guiPatience)
        : m_access{&gui, this, guiPatience}
    {
    }
    bool listen(const QString &socketPath);
    QString errorString() const { return m_server->errorString(); }

private:
    void acceptClients();

    const GuiAccess m_access;
    QLocalServer *m_server = new QLocalServer(this);
};

// One connection; deletes itself when it ends. Lives in the control thread.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    ControlClient(QLocalSocket *socket, const GuiAccess &access, QObject *parent);
    ~ControlClient() override;

private:
    // Work for the GUI thread; open until it is answered or given up.
    using Errand = std::shared_ptr<std::atomic<bool>>;

    void readRequests();
    void serve(const QByteArray &line);
    void askGui(const Request &request);
    void finishErrand(const std::string &reply);
    void send(const std::string &reply);

    const GuiAccess m_access;
    QLocalSocket *m_socket;
    Errand m_errand;
};

} // namespace sim
