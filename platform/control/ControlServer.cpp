#include "platform/control/ControlServer.h"

#include "platform/control/ControlListener.h"

#include <future>
#include <utility>

namespace control {
namespace {

// The thread never waits for the GUI thread; only an overloaded machine can make it take longer.
constexpr unsigned long STOP_TIMEOUT_MS = 2000;

} // namespace

ControlServer::ControlServer(Handler panel, std::chrono::milliseconds guiTimeout)
    : m_panel(std::move(panel)), m_guiTimeout(guiTimeout)
{
}

ControlServer::~ControlServer()
{
    stop();
}

bool ControlServer::start(const QString &socketPath)
{
    stop();
    m_gui = std::make_unique<Mailbox>();
    m_listener = new ControlListener(m_panel, *m_gui, m_guiTimeout);
    m_listener->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_listener, &QObject::deleteLater);
    m_thread.setObjectName(QStringLiteral("control"));
    m_thread.start();
    std::promise<bool> listens;
    m_listener->post([&] {
        m_errorString = m_listener->listen(socketPath);
        listens.set_value(m_errorString.isEmpty());
    });
    const bool listening = listens.get_future().get();
    if (!listening)
        stop();
    return listening;
}

void ControlServer::stop()
{
    if (m_listener == nullptr)
        return;
    m_thread.quit();
    if (!m_thread.wait(STOP_TIMEOUT_MS))
        // The thread may still use it. NOLINTNEXTLINE(bugprone-unused-return-value)
        static_cast<void>(m_gui.release());
    m_gui.reset();
    m_listener = nullptr;
}

} // namespace control
