#include "services/cloud/Store.h"

#include "services/common/GLib.h"
#include "services/common/Journal.h"

#include <filesystem>
#include <sys/stat.h>
#include <utility>

namespace cloud {
namespace {

constexpr gsize LARGEST_FILE = 262144;

// PEM leaves out what stands before its first line.
std::string firstLine(const std::string &issuer, const std::string &device)
{
    return "For " + device + ", by " + issuer + "\n";
}

void removeLeftovers(const std::filesystem::path &file)
{
    std::error_code ignored;
    const std::string begin = file.filename().string() + ".";
    for (const auto &entry : std::filesystem::directory_iterator(file.parent_path(), ignored))
        if (entry.path().filename().string().compare(0, begin.size(), begin) == 0)
            std::filesystem::remove(entry.path(), ignored);
}

} // namespace

Store::Store(std::string path) : m_path(std::move(path))
{
    removeLeftovers(m_path);
}

std::optional<Identity> Store::load(const std::string &issuer, const std::string &device) const
{
    std::error_code none;
    const auto fileSize = std::filesystem::file_size(m_path, none);
    char *data = nullptr;
    gsize size = 0;
    if (none || fileSize > LARGEST_FILE ||
        g_file_get_contents(m_path.c_str(), &data, &size, nullptr) == FALSE)
        return std::nullopt;
    const std::string text(data, size);
    g_free(data);
    const std::string line = firstLine(issuer, device);
    if (text.compare(0, line.size(), line) != 0)
        return std::nullopt;
    return readIdentity(text.substr(line.size()));
}

bool Store::keep(const std::string &issuer, const std::string &device,
                 const Identity &identity) const
{
    const std::string text = firstLine(issuer, device) + identity.pem;
    const auto flags = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                          G_FILE_SET_CONTENTS_DURABLE);
    service::Error error;
    if (g_file_set_contents_full(m_path.c_str(), text.data(), static_cast<gssize>(text.size()),
                                 flags, S_IRUSR | S_IWUSR, &error) != FALSE)
        return true;
    service::warn("the certificate is not kept: " + error.text());
    return false;
}

} // namespace cloud
