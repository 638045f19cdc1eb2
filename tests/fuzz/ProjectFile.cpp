// A project's file: its seal, and an archive that its digests vouch for.
#include "services/update/Tree.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <openssl/sha.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t MOST = 1U << 22;

fs::path scratch()
{
    static const fs::path folder = [] {
        std::string name = "/dev/shm/project-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr)
            std::abort();
        return fs::path(name);
    }();
    return folder;
}

updates::Container sealed(const std::uint8_t *data, std::size_t size)
{
    updates::Container container;
    container.entries = 50;
    container.unpackedBytes = MOST;
    container.contentBytes = size;
    for (std::size_t at = 0; at < size; at += updates::CHUNK)
        SHA256(data + at, std::min<std::size_t>(size - at, updates::CHUNK),
               container.digests.emplace_back().data());
    return container;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const int memory = ::memfd_create("project", MFD_CLOEXEC);
    if (size == 0 || ::write(memory, data, size) != static_cast<ssize_t>(size)) {
        ::close(memory);
        return 0;
    }
    const os::OpenFile file("/proc/self/fd/" + std::to_string(memory));
    if (const auto container = updates::readContainer(file)) {
        updates::Content content(file, *container);
        while (!content.isAtEnd() && content.next()) {
        }
    }
    const fs::path folder = scratch() / "prj";
    fs::create_directory(folder);
    std::string why;
    const auto container = sealed(data, size);
    updates::unpack(
        file, container, folder, [](std::uint64_t) { return true; }, why);
    for (const auto &each : fs::directory_iterator(scratch()))
        if (each.path().filename() != "prj")
            std::abort(); // it climbed out
    fs::remove_all(folder);
    ::close(memory);
    return 0;
}
