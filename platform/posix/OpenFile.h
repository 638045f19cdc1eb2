// A regular file from outside, such as one on a U-disk, opened for reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace os {

// Never blocks: a pipe, a device or a folder of that name does not open.
class OpenFile
{
public:
    // `path` is used as it comes; one with a zero byte inside names no file.
    explicit OpenFile(const std::string &path);
    ~OpenFile();
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool isOpen() const { return m_fd != -1; }
    // -1 if it is not open.
    int fd() const { return m_fd; }
    // 0 if it is not open.
    std::uint64_t size() const;
    // Whether both are open and the same, unchanged in size.
    bool isSameAs(const OpenFile &other) const;

    // Up to `size` bytes from `offset` on; fewer if the file ends before or cannot be read.
    std::string read(std::uint64_t offset, std::size_t size) const;

private:
    int m_fd;
    struct stat m_info = {};
};

// The name of a file without its folder.
std::string fileName(const std::string &path);

} // namespace os
