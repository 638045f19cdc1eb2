#include "system/RuntimeWord.h"

#include "platform/runtime.h"

#include <cstdio>

namespace {

constexpr int NO_TEXT = -1;
constexpr int REFUSED = -2;
constexpr int NOT_READ = -1;

} // namespace

int readWordValue(unsigned int address, unsigned short &value)
{
    return backstage_AddrRead(address, &value, 1) < 0 ? REFUSED : 0;
}

int readWord(unsigned int address, QString &text)
{
    unsigned short value = 0;
    text.clear();
    if (readWordValue(address, value) != 0)
        return NOT_READ;
    text = QString::number(value);
    return 0;
}

int writeWordValue(unsigned int address, unsigned short value)
{
    if (backstage_AddrWrite(address, &value, 1) < 0)
        return REFUSED;
    std::printf("[%d]{%s} ", __LINE__, "SetAddrData");
    std::printf("Write dwAddr = %d Data is %d\n", static_cast<int>(address), value);
    return 0;
}

int writeWord(unsigned int address, const QString &text)
{
    return text.isEmpty() ? NO_TEXT : writeWordValue(address, text.toUShort());
}
