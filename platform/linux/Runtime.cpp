// The settings words of the control runtime, over Modbus/TCP.
#include "platform/runtime.h"

#include "platform/linux/PanelConf.h"
#include "platform/linux/WordsClient.h"

namespace {

constexpr int FAILED = -1;
constexpr std::chrono::milliseconds TIMEOUT(400);
constexpr std::chrono::milliseconds CLOCK_TIMEOUT(800); // its keeper asks other services
constexpr unsigned int CLOCK = 28;
constexpr int CLOCK_MAY_BE_SET = 0; // coil

// Never destroyed: threads may ask to the very end.
board::WordsClient &words()
{
    static board::WordsClient &client =
        *new board::WordsClient(board::panelConf().wordsPort, TIMEOUT);
    return client;
}

} // namespace

int backstage_AddrRead(unsigned int address, unsigned short *values, int count)
{
    return words().read(address, values, count) ? 0 : FAILED;
}

int backstage_AddrWrite(unsigned int address, const unsigned short *values, int count)
{
    const auto timeout = address == CLOCK ? CLOCK_TIMEOUT : TIMEOUT;
    return words().write(address, values, count, timeout) ? 0 : FAILED;
}

int backstage_AllowSetTime()
{
    return words().coil(CLOCK_MAY_BE_SET) ? 1 : 0;
}
