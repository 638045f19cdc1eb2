#include "services/update/Firmware.h"

#include "platform/paths.h"
#include "platform/posix/SmallFile.h"
#include "platform/posix/UpdateWire.h"
#include "services/update/Project.h"
#include "services/update/Rauc.h"
#include "services/update/Trial.h"

#include <algorithm>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace updates {
namespace {

constexpr std::uint64_t SECTOR = 512; // of sysfs, whatever the disk has
constexpr int SECTORS_WRITTEN = 6;    // field of block/stat (kernel, Documentation/block/stat.rst)
constexpr int WRITTEN = 95;           // percent; the rest is the boot loader's

// What the kernel tells about a block device.
class BlockDevice
{
public:
    explicit BlockDevice(const std::string &path)
    {
        struct stat info = {};
        if (::stat(path.c_str(), &info) == 0 && S_ISBLK(info.st_mode))
            m_folder = "/sys/dev/block/" + std::to_string(major(info.st_rdev)) + ":" +
                       std::to_string(minor(info.st_rdev)) + "/";
    }

    // 0 if it is none.
    std::uint64_t size() const { return field("size", 0) * SECTOR; }
    // Since the board was started.
    std::uint64_t bytesWritten() const { return field("stat", SECTORS_WRITTEN) * SECTOR; }

private:
    std::uint64_t field(const char *file, int number) const
    {
        std::istringstream fields(m_folder.empty() ? "" : board::readFact(m_folder + file));
        std::uint64_t value = 0;
        for (int i = 0; i <= number; ++i)
            fields >> value;
        return fields ? value : 0;
    }

    std::string m_folder;
};

// The slot that is written next: of two the one that does not run.
std::optional<Slot> otherSlot(const std::vector<Slot> &slots)
{
    const auto other =
        std::find_if(slots.begin(), slots.end(), [](const Slot &slot) { return !slot.isBooted; });
    return other == slots.end() ? std::nullopt : std::optional(*other);
}

// RAUC opens the file anew: by this name it is the one that was looked at.
std::string nameOfOpen(const os::OpenFile &file)
{
    return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file.fd());
}

int failed(int error, std::string reason, std::string &why)
{
    why = std::move(reason);
    return error;
}

} // namespace

Checked checkFirmware(const std::string &path, const Settings &settings)
{
    auto file = std::make_shared<const os::OpenFile>(path);
    if (!file->isOpen())
        return refused(os::UPDATE_BAD_FILE, "it cannot be read", {});
    auto bundle = readBundle(*file, settings.keyring);
    if (!bundle)
        return refused(os::UPDATE_BAD_FILE, "it is damaged, or no bundle", {});
    if (!bundle->fault.empty())
        return refused(os::UPDATE_BAD_FILE, bundle->fault, bundle->model);
    const bool isNewer = bundle->version && projectVersion().value_or(UINT64_MAX) < bundle->version;
    const std::string model = bundle->model;
    return {isNewer ? os::UPDATE_UNFIT_VERSION : os::UPDATE_DONE, model,
            isNewer ? "it is newer than the project" : "", std::move(file), std::move(*bundle)};
}

int installFirmware(const Checked &checked, const std::function<bool(int percent)> &goesOn,
                    std::string &why)
{
    const auto &bundle = std::get<Bundle>(checked.content);
    Rauc rauc;
    const auto target = otherSlot(rauc.slots());
    if (!target)
        return failed(os::UPDATE_NO_PLACE, "this board has no second slot", why);
    const BlockDevice device(target->device);
    if (device.size() < bundle.imageBytes)
        return failed(os::UPDATE_NO_PLACE, "it does not fit into " + target->name, why);
    const std::uint64_t before = device.bytesWritten();
    const Trial trial;
    trial.begin(target->name, bundle.version);
    why = rauc.install(nameOfOpen(*checked.file), [&] {
        ::sync(); // else the kernel counts nothing for seconds, and writes all of it in the end
        const std::uint64_t bytes = std::min(device.bytesWritten() - before, bundle.imageBytes);
        return goesOn(static_cast<int>(bytes * WRITTEN / bundle.imageBytes));
    });
    if (why.empty())
        trial.installed();
    else
        trial.forget();
    // Else a file that is damaged further on, or has gone.
    const bool isSlot = why.find("writing") != std::string::npos;
    return why.empty() ? os::UPDATE_DONE : isSlot ? os::UPDATE_NO_PLACE : os::UPDATE_BAD_FILE;
}

} // namespace updates
