#include "platform/sim/UpdateReply.h"

#include <random>

namespace sim {
namespace {

constexpr std::size_t REPLY_SIZE = os::UPDATE_MODEL_OFFSET + os::UPDATE_MODEL_SIZE;
constexpr std::size_t SHORT_SIZE = 10; // within the error number
constexpr std::size_t LONG_SIZE = 4096;

// The same bytes every time, so that a failure can be repeated.
std::string noise(std::size_t size)
{
    std::minstd_rand random; // NOLINT(cert-msc32-c,cert-msc51-cpp)
    std::string bytes;
    while (bytes.size() < size)
        bytes.push_back(static_cast<char>(random() >> 8U));
    return bytes;
}

} // namespace

std::string encodeReply(const os::UpdateStatus &status, const std::string &how)
{
    const std::string bytes = os::encodeUpdateStatus(status);
    if (how == "empty")
        return {};
    if (how == "short")
        return bytes.substr(0, SHORT_SIZE);
    if (how == "long")
        return bytes + noise(LONG_SIZE - REPLY_SIZE);
    if (how == "unterminated")
        return bytes.substr(0, os::UPDATE_MODEL_OFFSET) + std::string(os::UPDATE_MODEL_SIZE, 'X');
    return how == "noise" ? noise(REPLY_SIZE) : bytes;
}

} // namespace sim
