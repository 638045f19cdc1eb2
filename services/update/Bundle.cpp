#include "services/update/Bundle.h"

#include "services/update/Settings.h"
#include "services/update/Signature.h"

#include <algorithm>
#include <ini.h>
#include <string_view>

namespace updates {
namespace {

constexpr std::size_t LENGTH_SIZE = 8;      // of the CMS before it, big-endian, at the file's end
constexpr std::uint64_t MOST_CMS = 0x10000; // bytes, as RAUC takes them

struct Manifest
{
    Bundle bundle;
    bool isVerity = false;
};

int onValue(void *kept, const char *section, const char *name, const char *value)
{
    auto &manifest = *static_cast<Manifest *>(kept);
    const std::string_view in = section;
    const std::string_view key = name;
    if (in == "bundle" && key == "format")
        manifest.isVerity = std::string_view(value) == "verity";
    else if (in == "update" && key == "compatible")
        manifest.bundle.model = value;
    else if (in == "update" && key == "version")
        manifest.bundle.version = wholeNumber(value);
    else if (in.substr(0, 6) == "image." && key == "size")
        manifest.bundle.imageBytes += wholeNumber(value).value_or(0);
    return 1;
}

std::uint64_t bigEndian(const std::string &bytes)
{
    std::uint64_t number = 0;
    for (const char byte : bytes)
        number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

std::string cmsOf(const os::OpenFile &file)
{
    if (file.size() < LENGTH_SIZE)
        return {};
    const std::uint64_t end = file.size() - LENGTH_SIZE;
    const std::string length = file.read(end, LENGTH_SIZE);
    const std::uint64_t size = bigEndian(length);
    if (length.size() != LENGTH_SIZE || size == 0 || size > std::min(MOST_CMS, end))
        return {};
    return file.read(end - size, size);
}

} // namespace

std::optional<Bundle> readBundle(const os::OpenFile &file, const std::string &keyring)
{
    auto content = openSigned(cmsOf(file), keyring);
    if (!content)
        return std::nullopt;
    Manifest manifest;
    // A line that is not understood counts nothing: RAUC has the last word on the manifest.
    ini_parse_string(content->text.c_str(), onValue, &manifest);
    if (!manifest.isVerity || manifest.bundle.model.empty() || manifest.bundle.imageBytes == 0)
        return std::nullopt;
    manifest.bundle.fault = std::move(content->fault);
    return std::move(manifest.bundle);
}

} // namespace updates
