// What an update service finds in a project or firmware file.
#pragma once

#include <cstdint>
#include <string>

namespace os {

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
