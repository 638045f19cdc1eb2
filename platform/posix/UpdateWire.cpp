#include "platform/posix/UpdateWire.h"

#include "platform/posix/Bytes.h"

namespace os {

std::string encodeUpdateStatus(const UpdateStatus &status)
{
    std::string bytes;
    for (const int number : {status.state, status.percent, status.error})
        bytes += toBytes(static_cast<std::uint32_t>(number));
    bytes += status.model.substr(0, UPDATE_MODEL_SIZE - 1);
    bytes.resize(UPDATE_MODEL_OFFSET + UPDATE_MODEL_SIZE, '\0');
    return bytes;
}

} // namespace os
