#include "system/RuntimeWord.h"

#include "platform/runtime.h"

#include <cstdio>

namespace {

constexpr int NOT_READ = -1;
constexpr int NO_TEXT = -1;
constexpr int REFUSED = -2;

} // namespace

int readWord(unsigned int address, unsigned short &value)
{
    return backstage_AddrRead(address, &value, 1) < 0 ? NOT_READ : 0;
}

int writeWord(unsigned int address, unsigned short value)
{
    const int result = writeWords(address, &value, 1);
    if (result == 0) {
        std::printf("[%d]{%s} ", __LINE__, "SetAddrData");
        std::printf("Write dwAddr = %d Data is %d\n", static_cast<int>(address), value);
    }
    return result;
}

int writeWord(unsigned int address, const QString &text)
{
    return text.isEmpty() ? NO_TEXT : writeWord(address, text.toUShort());
}

int writeWords(unsigned int address, const unsigned short *words, int count)
{
    return backstage_AddrWrite(address, words, count) < 0 ? REFUSED : 0;
}
