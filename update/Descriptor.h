// An open file that closes itself.
#pragma once

#include <unistd.h>
#include <utility>

class Descriptor
{
public:
    // Takes over `fd`, as open(2) returns it: -1 is no file.
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor()
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
