#include "update/UpdateStatus.h"

#include "platform/local_udp.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t RECORD_SIZE = 268;
constexpr std::size_t PERCENT_AT = 4;
constexpr std::size_t ERROR_AT = 8;
constexpr std::size_t MODEL_AT = 12;

using Record = std::array<char, RECORD_SIZE>;

int numberAt(const Record &record, std::size_t offset)
{
    return qFromLittleEndian<qint32>(record.data() + offset);
}

std::string requestOf(UpdateCommand command, const std::string &payload)
{
    std::string body(sizeof(qint32), '\0');
    qToLittleEndian<qint32>(command, body.data());
    return body + payload;
}

} // namespace

UpdateStatus parseUpdateStatus(const std::string &reply)
{
    Record record{};
    std::copy_n(reply.data(), std::min(reply.size(), RECORD_SIZE), record.data());
    const auto model = record.begin() + MODEL_AT;
    return {numberAt(record, 0), numberAt(record, PERCENT_AT), numberAt(record, ERROR_AT),
            std::string(model, std::find(model, record.end(), '\0'))};
}

UpdateResult askUpdateService(UpdateCommand command, const std::string &payload,
                              unsigned int timeoutMs, UpdateStatus &status)
{
    std::string reply;
    status = {};
    if (CBB::CbbLocalUdp::request("DownLoad", requestOf(command, payload), reply, timeoutMs) < 0)
        return UPDATE_FAILED;
    status = parseUpdateStatus(reply);
    return reply.size() < MODEL_AT ? UPDATE_TOO_SHORT : UPDATE_ANSWERED;
}
