// A cloud.xml of any content.
#include "platform/posix/CloudFile.h"

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const int file = memfd_create("cloud.xml", MFD_CLOEXEC);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();
    netT::CloudConfig config;
    std::string region;
    std::string trust;
    const int result = os::readCloudFile(path, config, region);
    if (result == 0 && (config.sUrl.empty() || config.nPort < 1 || config.nPort > 65535))
        std::abort();
    if (os::readCloudTrust(path, trust) == 0 && result != 0)
        std::abort();
    return 0;
}
