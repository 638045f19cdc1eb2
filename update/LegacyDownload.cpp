#include "update/LegacyDownload.h"

#include "platform/cos_file.h"
#include "platform/cos_time.h"
#include "platform/paths.h"
#include "platform/serial_line.h"
#include "update/LegacyExchange.h"
#include "update/LegacyProgram.h"
#include "update/RC4Cryptor.h"

#include <QScopeGuard>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int CANNOT_READ = -8;
constexpr int NO_PROGRAM = -22;
constexpr int CANNOT_OPEN_PORT = -21;

// `path` as one word of the shell; plain paths stay as they are.
std::string shellWord(const std::string &path)
{
    constexpr const char *PLAIN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/_.-";
    if (path.find_first_not_of(PLAIN) == std::string::npos)
        return path;
    std::string word = "'";
    for (const char c : path)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

void removeWithShell(const std::string &path)
{
    if (!COS::CosFile::ExistFile(path))
        return;
    const std::string command = "rm  " + shellWord(path);
    // The command is given; nobody changes how SIGCHLD is handled meanwhile.
    // NOLINTNEXTLINE(concurrency-mt-unsafe,bugprone-command-processor)
    if (std::system(command.c_str()) != 0)
        std::printf("%s error \n", command.c_str());
}

int sendDeciphered(const std::string &path)
{
    const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0)
        return CANNOT_READ;
    auto fileCloser = qScopeGuard([file] { close(file); });
    const auto program = readLegacyProgram(file);
    if (!program)
        return NO_PROGRAM;
    int port = -1;
    if (PLATFORM::openPort(file, port, program->line) != 0) {
        fileCloser.dismiss(); // closed with the port
        return CANNOT_OPEN_PORT;
    }
    const auto portCloser = qScopeGuard([port] { PLATFORM::closePort(port); });
    return LegacyExchange(port, program->line.baud).send(program->bytes);
}

} // namespace

int downloadLegacyProgram(const std::string &path)
{
    const std::string deciphered = panelPath("/tmp/unzip_temp") + "/" + "update.bin";
    const int result =
        decipherFile(path, deciphered) == 0 ? sendDeciphered(deciphered) : CANNOT_READ;
    removeWithShell(deciphered);
    std::printf("on_UpdatePLCProgram_clicked end time %ld!\r\n",
                static_cast<long>(COS::CosTime::GetTimeStamp()));
    return result;
}
