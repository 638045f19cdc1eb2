#include "platform/sim/UpdateInstall.h"

#include "platform/sim/Root.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace sim {
namespace {

constexpr std::uint64_t BLOCK = 65536;

std::string folder()
{
    return panelRoot() + "/mnt/data/update/";
}

std::string partPath()
{
    return folder() + ".part";
}

std::string installedPath(const std::string &path)
{
    const std::string name = os::fileName(path);
    const std::size_t dot = name.rfind('.');
    return folder() + (os::isFirmware(path) ? "firmware" : "project") +
           (dot == std::string::npos ? std::string() : name.substr(dot));
}

} // namespace

UpdateInstall::UpdateInstall(const std::string &path)
    : m_path(path), m_file(os::readUpdateFile(path)), m_source(path)
{
    std::error_code error; // the open fails then
    std::filesystem::create_directories(folder(), error);
    m_copy.open(partPath(), std::ios::binary | std::ios::trunc);
}

UpdateInstall::~UpdateInstall()
{
    m_copy.close();
    std::error_code error;
    std::filesystem::remove(partPath(), error);
}

// An open file can still be read when it has been removed or its disk pulled out, so the path is
// opened again.
int UpdateInstall::copyTo(int percent)
{
    if (m_file.kind == os::UpdateFile::Unusable || !os::OpenFile(m_path).isSameAs(m_source))
        return ERR_SOURCE;
    const std::uint64_t end = m_source.size() * static_cast<std::uint64_t>(percent) / 100;
    while (m_copied < end) {
        const std::string block = m_source.read(m_copied, std::min(BLOCK, end - m_copied));
        if (block.empty())
            return ERR_SOURCE;
        m_copy.write(block.data(), static_cast<std::streamsize>(block.size()));
        m_copied += block.size();
    }
    return m_copy ? 0 : ERR_TARGET;
}

int UpdateInstall::finish()
{
    const int result = copyTo(100);
    if (result != 0)
        return result;
    m_copy.close();
    const bool named =
        m_copy && std::rename(partPath().c_str(), installedPath(m_path).c_str()) == 0;
    return named ? 0 : ERR_TARGET;
}

} // namespace sim
