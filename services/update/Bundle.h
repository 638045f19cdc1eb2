// A firmware file: a RAUC bundle in the format "verity" (RAUC's manual, "Bundle Formats").
#pragma once

#include "platform/posix/OpenFile.h"

#include <cstdint>
#include <optional>
#include <string>

namespace updates {

// What its manifest says.
struct Bundle
{
    std::string model;                    // "compatible"
    std::optional<std::uint64_t> version; // nothing if it has none, or one that is no number
    std::uint64_t imageBytes = 0;         // of all images together, unpacked
    std::string fault; // why nobody vouches for the manifest; "" if somebody does
};

// Reads the end of a file; its payload is checked by the kernel while RAUC installs it. Nothing if
// that is no manifest of a bundle.
std::optional<Bundle> readBundle(const os::OpenFile &file, const std::string &keyring);

} // namespace updates
