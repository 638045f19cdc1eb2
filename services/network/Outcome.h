#pragma once

#include <functional>

namespace network {

// What comes of a request; the errors of the interface.
enum class Outcome {
    Done,
    Failed,   // refused, or it did not work
    NoDevice, // there is no such device, or it is unplugged
};

using Done = std::function<void(Outcome)>;

} // namespace network
