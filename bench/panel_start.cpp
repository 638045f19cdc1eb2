// The settings program on the simulated panel, as shipped, telling when its first frame is there.

#include "app/Program.h"
#include "bench/FirstFrame.h"
#include "platform/sim/SimProgram.h"

int main(int argc, char **argv)
{
    const int refused = sim::startFromEnvironment();
    if (refused != 0)
        return refused;
    runProgram(argc, argv, [] {
        FirstFrame::watch();
        sim::serveControl();
    });
}
