// What an update service finds in a project or firmware file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace os {

// Where a header has what.
constexpr std::string_view UPDATE_MAGIC = "SYSSETUP";
constexpr std::size_t UPDATE_VERSION_OFFSET = 8;
constexpr std::size_t UPDATE_FILE_MODEL_OFFSET = 12;
constexpr std::size_t UPDATE_FILE_MODEL_SIZE = 32;
constexpr std::size_t UPDATE_LENGTH_OFFSET = 44;
constexpr std::size_t UPDATE_HEADER_SIZE = 48;

// The header of a file, see docs/porting: "SYSSETUP", the version (4 bytes), the model (32 bytes,
// filled up with zeros), the number of the bytes that follow (4 bytes); numbers little-endian.
struct UpdateFile
{
    enum Kind {
        Unusable, // cannot be read, is no regular file, or has a damaged header
        Plain,    // has no header, whatever is in it
        Headed,
    };

    Kind kind = Unusable;
    std::string model; // these two of a headed file
    std::uint32_t version = 0;
};

UpdateFile readUpdateFile(const std::string &path);

// By its name: a firmware, else a project.
bool isFirmware(const std::string &path);

} // namespace os
