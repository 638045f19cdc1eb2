#include "platform/posix/SmallFile.h"

#include "platform/cos_file.h"
#include "platform/posix/FileDescriptor.h"

#include <charconv>
#include <fcntl.h>

namespace board {
namespace {

constexpr std::size_t LARGEST_FILE = 65536;
constexpr const char *AROUND = "\0 \t\r\n";
constexpr std::size_t AROUND_SIZE = 5;

} // namespace

std::optional<std::string> readFile(const std::string &path)
{
    const os::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen())
        return std::nullopt;
    std::string content(LARGEST_FILE + 1, '\0');
    std::size_t size = 0;
    ssize_t got = 0;
    while (size < content.size() &&
           (got = ::read(file.get(), &content[size], content.size() - size)) > 0)
        size += static_cast<std::size_t>(got);
    if (got < 0 || size > LARGEST_FILE)
        return std::nullopt;
    content.resize(size);
    return content;
}

std::string trimmed(const std::string &text)
{
    const std::string around(AROUND, AROUND_SIZE);
    const std::size_t first = text.find_first_not_of(around);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(around) + 1 - first);
}

std::string readFact(const std::string &path)
{
    return trimmed(readFile(path).value_or(std::string()));
}

bool writeFile(const std::string &path, const std::string &text)
{
    const os::FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return file.isOpen() &&
           ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::vector<std::string> namesIn(const std::string &directory)
{
    std::vector<std::string> names;
    COS::CosDir::ListDir(directory, "*", names);
    return names;
}

std::optional<int> numberIn(const std::string &text)
{
    int number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

} // namespace board
