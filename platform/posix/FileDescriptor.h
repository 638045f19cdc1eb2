// An open file that closes itself.
#pragma once

#include <unistd.h>
#include <utility>

namespace os {

class FileDescriptor
{
public:
    // Takes over `fd`, as open(2) returns it: -1 is no file.
    explicit FileDescriptor(int fd = -1) : m_fd(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor()
    {
        if (isOpen())
            ::close(m_fd);
    }

    bool isOpen() const { return m_fd >= 0; }
    int get() const { return m_fd; }
    // Hands the file to the caller, who closes it.
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

} // namespace os
