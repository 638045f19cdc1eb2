// The small services: versions, digest, notify client, process lookup, local UDP.
#include "platform/services.h"

#include "platform/cos_process.h"
#include "platform/linux/Versions.h"
#include "platform/local_udp.h"
#include "platform/posix/LocalUdp.h"
#include "platform/posix/ProcessTable.h"

#include <QCryptographicHash>

namespace dsl {

// No service takes notifications: the client stays unconnected.
CNotifyClient::CNotifyClient() = default;
CNotifyClient::~CNotifyClient() {} // there is nothing to leave

// Local files, which need no time worth bounding.
int getVersionList(std::vector<VersionEntry_T> &list, unsigned int)
{
    list = board::installedVersions();
    return 0;
}

} // namespace dsl

namespace cbl {

int md5String(const std::string &input, std::string &output)
{
    const auto bytes = QByteArray::fromStdString(input);
    output = QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex().toStdString();
    return 0;
}

} // namespace cbl

namespace COS {

int CosOsState::GetProcessPIDByName(const std::string &name)
{
    return os::scanProcessTable(name);
}

} // namespace COS

namespace CBB {

int CbbLocalUdp::request(const std::string &endpoint, const std::string &body, std::string &reply,
                         unsigned int timeoutMs)
{
    return os::exchangeDatagram(os::localUdpPort(endpoint), body, reply, timeoutMs);
}

} // namespace CBB
