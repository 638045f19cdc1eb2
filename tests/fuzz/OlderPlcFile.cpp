// An older PLC program file that deciphers to any content, up to the frames that would go out; and
// any answer of a PLC.
#include "platform/posix/SerialNodes.h"
#include "update/LegacyFrame.h"
#include "update/LegacyProgram.h"
#include "update/Progress.h"
#include "update/RC4Cryptor.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int HEADER_SIZE = 20;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

QByteArray encipher(QByteArray bytes)
{
    RC4Cryptor cryptor(legacyProgramKey());
    auto *data = reinterpret_cast<unsigned char *>(bytes.data());
    const auto size = static_cast<std::size_t>(bytes.size());
    for (std::size_t at = 0; at < size; at += 1024)
        cryptor.cryptBlock(data + at, std::min<std::size_t>(size - at, 1024));
    return bytes;
}

std::string scratchName()
{
    std::string name = "/dev/shm/older-XXXXXX";
    ::close(::mkstemp(name.data()));
    return name;
}

std::optional<LegacyProgram> readFile(const QByteArray &file)
{
    static const int memory = ::memfd_create("older.bin", MFD_CLOEXEC);
    static const std::string deciphered = scratchName();
    require(::ftruncate(memory, 0) == 0);
    require(::pwrite(memory, file.data(), static_cast<std::size_t>(file.size()), 0) == file.size());
    require(decipherFile("/proc/self/fd/" + std::to_string(memory), deciphered) == 0);
    const int fd = ::open(deciphered.c_str(), O_RDONLY | O_CLOEXEC);
    auto program = readLegacyProgram(fd);
    ::close(fd);
    ::unlink(deciphered.c_str());
    return program;
}

// A line whose speed can be set has one: how long an answer may take is divided by it.
void setUp(const PLATFORM::SerialSettings &line)
{
    static const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (os::serialNode(line.port, line.mode) == nullptr ||
        PLATFORM::setSpeed(terminal, line.baud) != 0)
        return;
    require(line.baud >= 300);
    PLATFORM::setParity(terminal, line.dataBits, line.stopBits, line.parity);
}

void download(const QByteArray &content)
{
    const auto program = readFile(encipher(content));
    require(g_Progress.nTotal == content.size());
    if (!program)
        return;
    require(program->bytes == content.mid(HEADER_SIZE) && !program->bytes.isEmpty());
    require(decodeFrame(encodeFrame(program->bytes)) == program->bytes);
    setUp(program->line);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    download(bytes);
    if (const auto answer = decodeFrame(bytes))
        require(encodeFrame(*answer) == bytes.trimmed() + "\r\n");
    return 0;
}
