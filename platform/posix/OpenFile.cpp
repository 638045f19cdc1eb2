#include "platform/posix/OpenFile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace os {
namespace {

int openToRead(const std::string &path)
{
    if (path.find('\0') != std::string::npos)
        return -1;
    return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

} // namespace

OpenFile::OpenFile(const std::string &path) : m_fd(openToRead(path))
{
    if (m_fd != -1 && ::fstat(m_fd, &m_info) == 0 && S_ISREG(m_info.st_mode))
        return;
    if (m_fd != -1)
        ::close(m_fd);
    m_fd = -1;
}

OpenFile::~OpenFile()
{
    if (m_fd != -1)
        ::close(m_fd);
}

std::uint64_t OpenFile::size() const
{
    return isOpen() ? static_cast<std::uint64_t>(m_info.st_size) : 0;
}

bool OpenFile::isSameAs(const OpenFile &other) const
{
    return isOpen() && other.isOpen() && m_info.st_dev == other.m_info.st_dev &&
           m_info.st_ino == other.m_info.st_ino && m_info.st_size == other.m_info.st_size;
}

std::string OpenFile::read(std::uint64_t offset, std::size_t size) const
{
    std::string bytes(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got =
            ::pread(m_fd, bytes.data() + done, size - done, static_cast<off_t>(offset + done));
        if (got == 0 || (got < 0 && errno != EINTR))
            break;
        done += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    bytes.resize(done);
    return bytes;
}

std::string fileName(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

} // namespace os
