// An open file that closes itself.
#pragma once

#include <unistd.h>
#include <utility>

namespace posix {

class FileDescriptor
{
public:
    // Takes over `fd`, as open(2) returns it: -1 is no file.
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor()
    {
        if (isOpen())
            ::close(fd_);
    }

    bool isOpen() const { return fd_ >= 0; }
    int get() const { return fd_; }

private:
    int fd_;
};

} // namespace posix
