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
        std::quick_exit(EXIT_FAILURE); // threads are at work already
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, windowShown, sim::startFromEnvironment);
}
