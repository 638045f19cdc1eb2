// sysset: the settings program on a real panel.

#include "app/Program.h"
#include "platform/linux/Ready.h"
#include "platform/linux/ScreenWait.h"

int main(int argc, char **argv)
{
    return runProgram(argc, argv, board::tellReady, board::waitForScreen);
}
