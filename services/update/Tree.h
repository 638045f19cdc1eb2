// A folder that is made of an archive.
#pragma once

#include "services/update/Container.h"

#include <functional>
#include <string>

namespace updates {

enum class Outcome {
    DONE,
    BAD_CONTENT, // cannot be read, is not what was sealed, or holds what no project may
    NO_PLACE,    // the disk does not take it
    STOPPED,
};

// Unpacks the content, a tar archive, plain or packed with gzip, xz or zstd, into the existing,
// empty folder `path`. Regular files and folders are taken, 0644 and 0755, owned by whom this runs
// as; a link, a device, a name that climbs out, or more than was sealed ends it. `goesOn` is called
// with the bytes of the content that have been read, after each MiB; false stops. `why` gets what
// went wrong.
Outcome unpack(const os::OpenFile &file, const Container &container, const std::string &path,
               const std::function<bool(std::uint64_t)> &goesOn, std::string &why);

} // namespace updates
