#include "platform/cos_file.h"

#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>

namespace COS {
namespace {

using os::FileDescriptor;

constexpr std::size_t COPY_BLOCK = 65536;

enum CopyError { UNREADABLE = -1, NO_DIRECTORY = -2, UNWRITABLE = -3 };

bool isDirectory(const std::string &path)
{
    struct stat info
    {
    };
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The directory that `path` stands in; its slash stays, so that "/file" gives the root.
std::string directoryOf(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

ssize_t readSome(int fd, std::vector<char> &block)
{
    ssize_t size = 0;
    do {
        size = ::read(fd, block.data(), block.size());
    } while (size < 0 && errno == EINTR);
    return size;
}

bool writeAll(int fd, const char *data, ssize_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, static_cast<std::size_t>(size));
        if (written < 0 && errno != EINTR)
            return false;
        data += std::max<ssize_t>(written, 0);
        size -= std::max<ssize_t>(written, 0);
    }
    return true;
}

int copyBytes(int from, int to)
{
    std::vector<char> block(COPY_BLOCK);
    ssize_t size = 0;
    while ((size = readSome(from, block)) > 0) {
        if (!writeAll(to, block.data(), size))
            return UNWRITABLE;
    }
    return size == 0 ? 0 : UNREADABLE;
}

// A file beside its destination that is gone again unless it has been moved there. Its name is
// short, whatever the destination's is: a name has 255 bytes at most.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string &directory)
        : m_path(directory + ".copy-XXXXXX"), m_fd(::mkostemp(m_path.data(), O_CLOEXEC))
    {
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile()
    {
        if (m_fd.isOpen() && !m_moved)
            ::unlink(m_path.c_str());
    }

    bool isOpen() const { return m_fd.isOpen(); }
    int fd() const { return m_fd.get(); }

    // rename(2) replaces the destination in one step; synced before it, so that a power failure
    // never leaves the new name on old or missing bytes.
    bool moveTo(const std::string &destination, mode_t mode)
    {
        m_moved = ::fchmod(fd(), mode) == 0 && ::fsync(fd()) == 0 &&
                  ::rename(m_path.c_str(), destination.c_str()) == 0;
        return m_moved;
    }

private:
    std::string m_path;
    FileDescriptor m_fd;
    bool m_moved = false;
};

// The file is in place already: a directory that cannot be synced is no failure of the copy.
void syncDirectory(const std::string &directory)
{
    const FileDescriptor fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.isOpen())
        ::fsync(fd.get());
}

int writeWhole(int from, mode_t mode, const std::string &to)
{
    const std::string directory = directoryOf(to);
    TemporaryFile copy(directory);
    if (!copy.isOpen())
        return UNWRITABLE;
    if (const int result = copyBytes(from, copy.fd()); result != 0)
        return result;
    if (!copy.moveTo(to, mode))
        return UNWRITABLE;
    syncDirectory(directory);
    return 0;
}

// The names of a directory, read one by one.
class Directory
{
public:
    explicit Directory(const std::string &path) : m_stream(::opendir(path.c_str())) {}
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;
    ~Directory()
    {
        if (m_stream != nullptr)
            ::closedir(m_stream);
    }

    // Null at the end, and on failure.
    const char *next() const
    {
        if (m_stream == nullptr)
            return nullptr;
        errno = 0;
        const dirent *entry = ::readdir(m_stream); // NOLINT(concurrency-mt-unsafe): our own stream
        return entry == nullptr ? nullptr : entry->d_name;
    }
    // Of the last next().
    bool hasFailed() const { return m_stream == nullptr || errno != 0; }

private:
    DIR *m_stream;
};

bool isSelfOrParent(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

bool CosFile::ExistFile(const std::string &path)
{
    struct stat info
    {
    };
    return ::stat(path.c_str(), &info) == 0;
}

int CosFile::CopyWithMakeDir(const std::string &from, const std::string &to)
{
    // Without O_NONBLOCK a pipe would wait for its writer.
    const FileDescriptor source(::open(from.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat info
    {
    };
    if (!source.isOpen() || ::fstat(source.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return UNREADABLE;
    if (CosDir::MakeDir(directoryOf(to)) != 0)
        return NO_DIRECTORY;
    return writeWhole(source.get(), (info.st_mode & ACCESSPERMS) | S_IRUSR | S_IWUSR, to);
}

int CosDir::ListDir(const std::string &directory, const std::string &pattern,
                    std::vector<std::string> &names)
{
    names.clear();
    const Directory entries(directory);
    while (const char *name = entries.next()) {
        if (!isSelfOrParent(name) && ::fnmatch(pattern.c_str(), name, 0) == 0)
            names.emplace_back(name);
    }
    if (entries.hasFailed()) {
        names.clear();
        return -1;
    }
    std::sort(names.begin(), names.end());
    return static_cast<int>(names.size());
}

int CosDir::MakeDir(const std::string &path)
{
    std::size_t end = 0;
    while (end < path.size()) {
        end = std::min(path.find('/', end + 1), path.size());
        const std::string part = path.substr(0, end);
        // Asked only after the failure: another process may make it at the same time.
        if (::mkdir(part.c_str(), 0755) != 0 && !isDirectory(part))
            return -1;
    }
    return path.empty() ? -1 : 0;
}

} // namespace COS
