// What the update service knows about the panel.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace updates {

struct Settings
{
    std::string model;          // of projects
    std::string board;          // the model of firmware
    bool mayBeUnsigned = false; // projects and logos
    std::string keyring = "/etc/sysset/update-keys.pem";
};

// Reads panel.conf; asks the board for a model that is not there. What is wrong in the file is told
// to the journal and has its default.
Settings readSettings(const std::string &path);

// A decimal number, whole.
std::optional<std::uint64_t> wholeNumber(std::string_view text);

// The version of the firmware that runs: IMAGE_VERSION of os-release(5). Nothing if it has none, or
// one that is no number.
std::optional<std::uint64_t> firmwareVersion();

} // namespace updates
