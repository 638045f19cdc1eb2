// sysset-dev: sysset with the control socket, for a developer's board. Never installed.

#include "app/Program.h"
#include "platform/control/ControlServer.h"
#include "platform/linux/Journal.h"
#include "platform/linux/Ready.h"
#include "platform/linux/ScreenWait.h"

#include <cstdlib>

namespace {

// SYSSET_CONTROL, or a place in the user's own run folder.
QString socketPath()
{
    const QString named = qEnvironmentVariable("SYSSET_CONTROL");
    return named.isEmpty() ? qEnvironmentVariable("XDG_RUNTIME_DIR", QStringLiteral("/run")) +
                                 QStringLiteral("/panel.sock")
                           : named;
}

// The socket is served to the end of the process, which may not wait for its thread.
void windowShown()
{
    static auto &server = *new control::ControlServer;
    if (!server.start(socketPath()))
        board::journal(board::Severity::Error, "cannot listen at " + socketPath().toStdString() +
                                                   ": " + server.errorString().toStdString());
    std::atexit([] { server.stop(); });
    board::tellReady();
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, windowShown, board::waitForScreen);
}
