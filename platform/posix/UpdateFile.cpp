#include "platform/posix/UpdateFile.h"

#include "platform/posix/Bytes.h"
#include "platform/posix/OpenFile.h"

#include <algorithm>
#include <string_view>

namespace os {

UpdateFile readUpdateFile(const std::string &path)
{
    const OpenFile file(path);
    const std::string header = file.read(0, UPDATE_HEADER_SIZE);
    if (!file.isOpen() || header.size() < std::min<std::uint64_t>(file.size(), UPDATE_HEADER_SIZE))
        return {};
    // A file that ends within the mark is a cut one with a header.
    const std::string_view mark = UPDATE_MAGIC.substr(0, header.size());
    if (header.compare(0, mark.size(), mark) != 0)
        return {UpdateFile::Plain, {}, 0};
    if (header.size() < UPDATE_HEADER_SIZE ||
        file.size() != UPDATE_HEADER_SIZE + std::uint64_t(numberFrom(header, UPDATE_LENGTH_OFFSET)))
        return {};
    const std::string model = header.substr(UPDATE_FILE_MODEL_OFFSET, UPDATE_FILE_MODEL_SIZE);
    return {UpdateFile::Headed, model.substr(0, model.find('\0')),
            numberFrom(header, UPDATE_VERSION_OFFSET)};
}

bool isFirmware(const std::string &path)
{
    return fileName(path).find(".osf") != std::string::npos;
}

} // namespace os
