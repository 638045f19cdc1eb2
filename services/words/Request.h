// One Modbus request, taken apart (MODBUS Application Protocol V1.1b3, section 6).
#pragma once

#include "services/words/Registers.h"

#include <cstddef>

namespace words {

// Exception codes of the same protocol, section 7.
enum class Failure : unsigned {
    NONE = 0,
    ILLEGAL_FUNCTION = 1,
    ILLEGAL_ADDRESS = 2,
    ILLEGAL_VALUE = 3,
    DEVICE_FAILURE = 4,
    BUSY = 6,
};

struct Request
{
    enum class Kind { READ_COILS, READ_WORDS, WRITE_WORDS };

    Kind kind = Kind::READ_WORDS;
    unsigned address = 0;
    unsigned count = 0;
    std::vector<Word> values; // to be written
};

// Takes the `size` bytes from the function code on apart. Returns NONE, or why there is no such
// request, with `request` undefined: a function code other than 1, 3, 6 and 16, or a length or
// count that does not fit it.
Failure parseRequest(const std::uint8_t *bytes, std::size_t size, Request &request);

} // namespace words
