#include "services/update/Firmware.h"

#include "platform/paths.h"
#include "platform/posix/SmallFile.h"
#include "platform/posix/UpdateWire.h"
#include "services/update/Project.h"
#include "services/update/Rauc.h"
#include "services/update/Trial.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <thread>
#include <unistd.h>

namespace updates {
namespace {

constexpr std::uint64_t SECTOR = 512; // of sysfs, whatever the disk has
constexpr int SECTORS_WRITTEN = 6;    // field of block/stat (kernel, Documentation/block/stat.rst)
constexpr int WRITTEN = 95;           // percent; the rest is the boot loader's

using namespace std::chrono_literals;
constexpr auto PROOF_TIME = 60s; // in which firmware has proved itself that was just started
constexpr auto TURN = 200ms;

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

std::string classOf(const Slot &slot)
{
    return slot.name.substr(0, slot.name.find('.'));
}

// The slot that is written next: of the two of a class the one that does not run.
std::optional<Slot> otherSlot(const std::vector<Slot> &slots)
{
    const auto running =
        std::find_if(slots.begin(), slots.end(), [](const Slot &slot) { return slot.isBooted; });
    if (running == slots.end())
        return std::nullopt;
    const auto other = std::find_if(slots.begin(), slots.end(), [&](const Slot &slot) {
        return !slot.isBooted && classOf(slot) == classOf(*running);
    });
    return other == slots.end() ? std::nullopt : std::optional(*other);
}

bool mayBoot(const std::vector<Slot> &slots, const std::string &name)
{
    return std::any_of(slots.begin(), slots.end(),
                       [&](const Slot &slot) { return slot.name == name && slot.mayBoot; });
}

// Else an install would write over the one that the panel may have to go back to.
bool waitUntilProved(const std::function<bool(int percent)> &goesOn)
{
    const std::string proof = panelPath("/run/sysset-good/done");
    const auto deadline = std::chrono::steady_clock::now() + PROOF_TIME;
    while (::access(proof.c_str(), F_OK) != 0) {
        if (std::chrono::steady_clock::now() > deadline || !goesOn(0))
            return false;
        std::this_thread::sleep_for(TURN);
    }
    return true;
}

int errorOf(RaucOutcome outcome, const std::string &why)
{
    if (outcome == RaucOutcome::Installed)
        return os::UPDATE_DONE;
    // A file that is damaged further on, or has gone; else the slot's disk, or RAUC itself.
    const bool isFile = outcome == RaucOutcome::Failed && why.find("writing") == std::string::npos;
    return isFile ? os::UPDATE_BAD_FILE : os::UPDATE_NO_PLACE;
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
        return failed(os::UPDATE_NO_PLACE, "RAUC tells of no second slot", why);
    if (!waitUntilProved(goesOn))
        return failed(os::UPDATE_NO_PLACE, "the firmware that runs has not proved itself", why);
    const BlockDevice device(target->device);
    if (device.size() < bundle.imageBytes)
        return failed(os::UPDATE_NO_PLACE, "it does not fit into " + target->name, why);
    const std::uint64_t before = device.bytesWritten();
    Trial trial;
    trial.begin(target->name, bundle.version);
    const auto isWriting = [&] {
        ::sync(); // else the kernel counts nothing for seconds, and writes all of it in the end
        const std::uint64_t bytes = std::min(device.bytesWritten() - before, bundle.imageBytes);
        return goesOn(static_cast<int>(bytes * WRITTEN / bundle.imageBytes));
    };
    const RaucOutcome outcome = rauc.install(nameOfOpen(*checked.file), isWriting, why);
    if (outcome == RaucOutcome::Installed)
        trial.installed();
    else if (outcome != RaucOutcome::Unknown)
        trial.undo(mayBoot(rauc.slots(), target->name));
    return errorOf(outcome, why);
}

} // namespace updates
