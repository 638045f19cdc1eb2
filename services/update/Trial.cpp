#include "services/update/Trial.h"

#include "platform/paths.h"
#include "platform/posix/SmallFile.h"
#include "services/common/Journal.h"
#include "services/update/Rauc.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace updates {
namespace {

namespace fs = std::filesystem;

constexpr const char *FOLDER = "/mnt/data/sysset";
constexpr const char *NOTE = "/mnt/data/sysset/firmware-trial";
constexpr const char *TOLD = "/mnt/data/sysset/versions.d/firmware-update.conf";
constexpr const char *THIS_START = "/run/sysset-update/firmware"; // gone with the next start
constexpr const char *GIVEN_UP = "/var/lib/sysset/given-up";      // in the slot: a stroke each time
constexpr std::size_t TRIALS = 3;

struct Note
{
    std::string state; // STARTED or INSTALLED
    std::string slot;
    std::string version; // "" if it has none
};

constexpr const char *STARTED = "started";
constexpr const char *INSTALLED = "installed";

std::optional<Note> readNote()
{
    const auto text = board::readFile(panelPath(NOTE));
    if (!text)
        return std::nullopt;
    std::istringstream lines(*text);
    Note note;
    for (std::string *field : {&note.state, &note.slot, &note.version})
        std::getline(lines, *field);
    return lines.fail() ? std::nullopt : std::optional(note);
}

void syncFolder(const std::string &path)
{
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    ::syncfs(folder);
    ::close(folder);
}

// Whole or not at all, and on the disk when this returns.
bool replaceFile(const std::string &path, const std::string &text)
{
    const std::string fresh = path + ".new";
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    std::ofstream file(fresh, std::ios::trunc);
    file << text;
    file.close();
    const std::string folder = fs::path(path).parent_path();
    syncFolder(folder);
    const bool isReplaced = file && std::rename(fresh.c_str(), path.c_str()) == 0;
    if (!isReplaced)
        service::warn(path + " cannot be written");
    syncFolder(folder);
    return isReplaced;
}

void write(const Note &note)
{
    replaceFile(panelPath(NOTE), note.state + "\n" + note.slot + "\n" + note.version + "\n");
}

void remove(const char *path)
{
    std::error_code error;
    if (fs::remove(panelPath(path), error))
        syncFolder(panelPath(FOLDER));
}

} // namespace

void Trial::begin(const std::string &slot, std::optional<std::uint64_t> version)
{
    m_before = board::readFile(panelPath(NOTE)).value_or(std::string());
    remove(TOLD);
    std::ofstream(panelPath(THIS_START)).flush();
    write({STARTED, slot, version ? std::to_string(*version) : std::string()});
}

void Trial::installed() const
{
    auto note = readNote();
    if (!note)
        return;
    note->state = INSTALLED;
    write(*note);
}

void Trial::undo(bool hasOneBefore) const
{
    if (hasOneBefore && !m_before.empty())
        replaceFile(panelPath(NOTE), m_before);
    else
        remove(NOTE);
}

void Trial::tellOutcome() const
{
    const auto note = readNote();
    if (!note || fs::exists(panelPath(THIS_START)))
        return;
    const auto slots = Rauc().slots();
    const auto running =
        std::find_if(slots.begin(), slots.end(), [](const Slot &slot) { return slot.isBooted; });
    const bool isNew = running == slots.end() || running->name == note->slot;
    if (isNew || fs::exists(panelPath(THIS_START))) // an install has begun meanwhile
        return;
    const std::string name = note->version.empty() ? "Firmware" : "Firmware " + note->version;
    const char *const outcome = note->state == INSTALLED ? "did not start; the one before is back"
                                                         : "was cut short; the one before runs";
    service::warn(name + " " + outcome);
    replaceFile(panelPath(TOLD), name + "=" + outcome + "\n");
    remove(NOTE);
}

bool giveUpFirmware()
{
    Rauc rauc;
    const auto slots = rauc.slots();
    const bool isOther = std::any_of(slots.begin(), slots.end(), [](const Slot &slot) {
        return !slot.isBooted && slot.mayBoot;
    });
    if (!isOther) {
        service::warn("the firmware has not proved itself, and there is no other one");
        return false;
    }
    const std::string count = panelPath(GIVEN_UP);
    const std::string times = board::readFact(count) + "I";
    if (!replaceFile(count, times + "\n"))
        return false;
    service::warn("the firmware has not proved itself in time: the board starts anew");
    if (times.size() >= TRIALS && !rauc.markBad())
        return false;
    return rauc.restartBoard();
}

} // namespace updates
