// A PLC program file of any content; also with checksums that are right.
#include "platform/linux/PlcFile.h"

#include "tests/support/PlcSums.h"

#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isPassword(bool isThere, const tagPdata &password)
{
    return isThere ? !password.sData.empty() && password.sData.size() <= 32
                   : password.sData.empty();
}

void parse(const std::vector<std::uint8_t> &bytes)
{
    board::PlcFile file;
    if (file.parse(bytes) != 0) {
        require(!file.fault().empty());
        return;
    }
    const Plc5VDownLoadInfo &info = file.info();
    std::size_t all = info.para.data.size() + info.cam.data.size() + file.extension().data.size();
    for (const PlcProData &block : info.program)
        all += block.data.size();
    for (const devmemorydataitem_t &range : info.memory) {
        all += 2 * range.values.size();
        require(!range.values.empty() && range.nAddress >= 0);
        require(static_cast<std::size_t>(range.nAddress) + range.values.size() <= 0xFF00);
    }
    require(all < bytes.size() && info.nVersion >= 0);
    require(isPassword(info.bDownLoadPasswd, info.downLoadPasswd));
    require(isPassword(info.bUpLoadProtect, info.upLoadPasswd));
    require(info.bProgram != info.program.empty() && info.bMemory != info.memory.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::vector<std::uint8_t> bytes(data, data + size);
    parse(bytes);
    plc_sums::mend(bytes);
    parse(bytes);
    return 0;
}
