#include "services/words/Request.h"

namespace words {
namespace {

enum Function : std::uint8_t {
    READ_COILS = 1,
    READ_HOLDING_REGISTERS = 3,
    WRITE_SINGLE_REGISTER = 6,
    WRITE_MULTIPLE_REGISTERS = 16,
};

constexpr unsigned MOST_COILS = 2000;
constexpr unsigned MOST_READ = 125;
constexpr unsigned MOST_WRITTEN = 123;

constexpr std::size_t FIXED_SIZE = 5;    // function, address, and a count or a value
constexpr std::size_t MULTIPLE_HEAD = 6; // function, address, count, bytes that follow

Word wordAt(const std::uint8_t *bytes)
{
    return static_cast<Word>(bytes[0] << 8 | bytes[1]);
}

Failure parseRead(Request::Kind kind, unsigned most, const std::uint8_t *bytes, std::size_t size,
                  Request &request)
{
    if (size != FIXED_SIZE)
        return Failure::ILLEGAL_VALUE;
    request = {kind, wordAt(bytes + 1), wordAt(bytes + 3), {}};
    return request.count >= 1 && request.count <= most ? Failure::NONE : Failure::ILLEGAL_VALUE;
}

Failure parseSingle(const std::uint8_t *bytes, std::size_t size, Request &request)
{
    if (size != FIXED_SIZE)
        return Failure::ILLEGAL_VALUE;
    request = {Request::Kind::WRITE_WORDS, wordAt(bytes + 1), 1, {wordAt(bytes + 3)}};
    return Failure::NONE;
}

Failure parseMultiple(const std::uint8_t *bytes, std::size_t size, Request &request)
{
    if (size < MULTIPLE_HEAD)
        return Failure::ILLEGAL_VALUE;
    const unsigned count = wordAt(bytes + 3);
    const std::size_t following = bytes[MULTIPLE_HEAD - 1];
    if (count < 1 || count > MOST_WRITTEN || following != std::size_t{2} * count ||
        size != MULTIPLE_HEAD + following)
        return Failure::ILLEGAL_VALUE;
    request = {Request::Kind::WRITE_WORDS, wordAt(bytes + 1), count, {}};
    for (std::size_t i = MULTIPLE_HEAD; i < size; i += 2)
        request.values.push_back(wordAt(bytes + i));
    return Failure::NONE;
}

} // namespace

Failure parseRequest(const std::uint8_t *bytes, std::size_t size, Request &request)
{
    switch (size == 0 ? 0 : bytes[0]) {
    case READ_COILS:
        return parseRead(Request::Kind::READ_COILS, MOST_COILS, bytes, size, request);
    case READ_HOLDING_REGISTERS:
        return parseRead(Request::Kind::READ_WORDS, MOST_READ, bytes, size, request);
    case WRITE_SINGLE_REGISTER:
        return parseSingle(bytes, size, request);
    case WRITE_MULTIPLE_REGISTERS:
        return parseMultiple(bytes, size, request);
    default:
        return Failure::ILLEGAL_FUNCTION;
    }
}

} // namespace words
