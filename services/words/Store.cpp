#include "services/words/Store.h"

#include "platform/posix/FileDescriptor.h"
#include "services/words/Journal.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <fcntl.h>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <zlib.h>

using os::FileDescriptor;

namespace words {
namespace {

constexpr const char *HEAD = "settings-words 1\n"; // the number is the format's
constexpr const char *CHECKSUM = "crc32 ";
constexpr std::size_t MOST_BYTES = 65536;

std::string checksumLine(std::string_view text)
{
    const auto *bytes = reinterpret_cast<const Bytef *>(text.data());
    std::array<char, 16> line{};
    std::snprintf(line.data(), line.size(), "%s%08lx\n", CHECKSUM, crc32_z(0, bytes, text.size()));
    return line.data();
}

// The text without its last line, or nothing if that is not its checksum.
std::optional<std::string> checkedBody(const std::string &text)
{
    const std::size_t end = text.rfind(CHECKSUM);
    if (end == std::string::npos || text.substr(end) != checksumLine(text.substr(0, end)))
        return std::nullopt;
    return text.substr(0, end);
}

int errorOf(int result)
{
    return result < 0 ? errno : 0;
}

int writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(fd, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return errno;
        bytes.remove_prefix(static_cast<std::size_t>(count < 0 ? 0 : count));
    }
    return 0;
}

int writeSynced(const std::string &path, const std::string &text)
{
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!file.isOpen())
        return errno;
    const int error = writeAll(file.get(), text);
    return error != 0 ? error : errorOf(::fsync(file.get()));
}

int syncFolder(const std::string &path)
{
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() ? errorOf(::fsync(folder.get())) : errno;
}

bool isRegular(int fd)
{
    struct stat status
    {
    };
    return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
}

// What can be read of a file, and at most a little more than a generation ever is.
std::string readBytes(int fd)
{
    std::string bytes(MOST_BYTES, '\0');
    std::size_t size = 0;
    ssize_t count = 1;
    while (count > 0 && size < bytes.size()) {
        count = ::read(fd, &bytes[size], bytes.size() - size);
        size += static_cast<std::size_t>(count < 0 ? 0 : count);
    }
    bytes.resize(size);
    return bytes;
}

} // namespace

std::string generationText(const Generation &generation)
{
    std::string text = HEAD;
    text += "generation " + std::to_string(generation.number) + "\n";
    for (const auto &[address, value] : generation.values)
        text += std::to_string(address) + " " + std::to_string(value) + "\n";
    return text + checksumLine(text);
}

std::optional<Generation> parseGeneration(const std::string &text)
{
    const auto body = checkedBody(text);
    const std::size_t headSize = std::string_view(HEAD).size();
    if (!body || body->compare(0, headSize, HEAD) != 0)
        return std::nullopt;
    std::istringstream lines(body->substr(headSize));
    Generation generation;
    std::string word;
    lines >> word >> generation.number;
    unsigned address = 0;
    Word value = 0;
    while (lines >> address >> value)
        generation.values[address] = value;
    return lines.eof() && word == "generation" ? std::optional(generation) : std::nullopt;
}

std::string Store::path(std::uint64_t generation) const
{
    return m_folder + (generation % 2 == 0 ? "/words.0" : "/words.1");
}

std::optional<Generation> Store::loadFile(const std::string &path) const
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file.isOpen() && errno == ENOENT)
        return std::nullopt;
    auto generation = file.isOpen() && isRegular(file.get())
                          ? parseGeneration(readBytes(file.get()))
                          : std::nullopt;
    if (!generation) {
        warn(path + " is broken: set aside");
        std::rename(path.c_str(), (path + ".broken").c_str());
    }
    return generation;
}

std::optional<Values> Store::load()
{
    m_bFolder = ::access(m_folder.c_str(), F_OK) == 0;
    if (!m_bFolder)
        warn("there is no folder " + m_folder + ": settings are not kept until the next start");
    std::optional<Generation> latest;
    for (const std::uint64_t turn : {0, 1}) {
        auto generation = loadFile(path(turn));
        if (generation && (!latest || generation->number > latest->number))
            latest = std::move(generation);
    }
    if (!latest)
        return std::nullopt;
    m_number = latest->number;
    return latest->values;
}

// At any moment the file is the old or the new one: the new one is on the disk before it gets the
// name, and the name is on the disk before the next generation replaces the other file.
int Store::replace(const std::string &path, const std::string &text) const
{
    const std::string part = m_folder + "/words.new";
    int error = writeSynced(part, text);
    if (error == 0)
        error = errorOf(std::rename(part.c_str(), path.c_str()));
    if (error != 0) {
        ::unlink(part.c_str());
        return error;
    }
    return syncFolder(m_folder);
}

int Store::save(const Values &values)
{
    if (!m_bFolder)
        return 0;
    const Generation next{m_number + 1, values};
    const int error = replace(path(next.number), generationText(next));
    if (error == 0)
        m_number = next.number;
    return error;
}

} // namespace words
