#pragma once

#include "platform/control/Request.h"

#include <QString>
#include <QThread>

#include <chrono>
#include <memory>

namespace control {

class ControlListener;
class Mailbox;

// The program's control socket: one request and one reply a line, each a JSON object. It lives in a
// thread of its own, so that it answers while the GUI thread is busy; only requests about widgets
// go to the GUI thread, and get an error if that does not answer in time.
// Requests of one connection are answered in their order; a line longer than one MiB gets an error.
// All functions: the GUI thread.
class ControlServer
{
public:
    // `panel` runs the requests that are not about widgets, on the server's thread; `guiTimeout` is
    // how long the GUI thread may take.
    explicit ControlServer(Handler panel = refuseRequest,
                           std::chrono::milliseconds guiTimeout = std::chrono::seconds(10));
    ~ControlServer();
    ControlServer(const ControlServer &) = delete;
    ControlServer &operator=(const ControlServer &) = delete;

    // Listens at `socketPath` (a socket that an ended program left there is replaced), open to
    // this user only. Returns false on failure, see errorString().
    bool start(const QString &socketPath);
    QString errorString() const { return m_errorString; }

    // Ends the connections and the thread. Does nothing if the server does not run.
    void stop();

private:
    const Handler m_panel;
    const std::chrono::milliseconds m_guiTimeout;
    QThread m_thread;
    std::unique_ptr<Mailbox> m_gui;
    ControlListener *m_listener = nullptr;
    QString m_errorString;
};

} // namespace control
