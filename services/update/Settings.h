// What the update service knows about the panel.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace updates {

struct Settings
{
    std::string model;          // of projects
    bool mayBeUnsigned = false; // projects and logos
    std::string keyring = "/etc/sysset/update-keys.pem";
};

// Reads panel.conf; asks the board for a model that is not there. What is wrong in the file is told
// to the journal and has its default.
Settings readSettings(const std::string &path);

// The version of the firmware that runs: IMAGE_VERSION of os-release(5). Nothing if it has none, or
// one that is no number.
std::optional<std::uint32_t> firmwareVersion();

} // namespace updates
