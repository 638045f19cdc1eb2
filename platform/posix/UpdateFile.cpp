#include "platform/posix/UpdateFile.h"

#include "platform/posix/Bytes.h"
#include "platform/posix/OpenFile.h"

#include <algorithm>
#include <string_view>

namespace os {
namespace {

constexpr std::string_view MAGIC = "SYSSETUP";
constexpr std::size_t VERSION_OFFSET = 8;
constexpr std::size_t MODEL_OFFSET = 12;
constexpr std::size_t MODEL_SIZE = 32;
constexpr std::size_t LENGTH_OFFSET = 44;
constexpr std::size_t HEADER_SIZE = 48;

} // namespace

UpdateFile readUpdateFile(const std::string &path)
{
    const OpenFile file(path);
    const std::string header = file.read(0, HEADER_SIZE);
    if (!file.isOpen() || header.size() < std::min<std::uint64_t>(file.size(), HEADER_SIZE))
        return {};
    // A file that ends within the mark is a cut one with a header.
    const std::string_view mark = MAGIC.substr(0, header.size());
    if (header.compare(0, mark.size(), mark) != 0)
        return {UpdateFile::Plain, {}, 0};
    if (header.size() < HEADER_SIZE ||
        file.size() != HEADER_SIZE + std::uint64_t(numberFrom(header, LENGTH_OFFSET)))
        return {};
    const std::string model = header.substr(MODEL_OFFSET, MODEL_SIZE);
    return {UpdateFile::Headed, model.substr(0, model.find('\0')),
            numberFrom(header, VERSION_OFFSET)};
}

bool isFirmware(const std::string &path)
{
    return fileName(path).find(".osf") != std::string::npos;
}

} // namespace os
