// sysset-sim: the settings program on the simulated panel.

#include "app/Program.h"
#include "platform/sim/SimProgram.h"

#include <QGuiApplication>

#include <cstdlib>

namespace {

void windowShown()
{
    // A touch panel has no pointer, a desktop does.
    if (qEnvironmentVariableIntValue("SYSSET_POINTER") == 1)
        QGuiApplication::restoreOverrideCursor();
    if (!sim::serveControl())
        std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): nobody could ever reach it
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, windowShown, sim::startFromEnvironment);
}
