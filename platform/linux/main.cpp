// sysset: the settings program on a real panel.

#include "app/Program.h"

int main(int argc, char **argv)
{
    return runProgram(argc, argv, [] {});
}
