// The settings program on the simulated panel, as shipped; preload.cpp has it tell when its first
// frame is there.

#include "app/Program.h"
#include "platform/sim/SimProgram.h"

int main(int argc, char **argv)
{
    return runProgram(
        argc, argv, [] { sim::serveControl(); }, sim::startFromEnvironment);
}
