#include "services/update/Project.h"

#include "platform/paths.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/SmallFile.h"
#include "platform/posix/UpdateFile.h"
#include "platform/posix/UpdateWire.h"
#include "services/common/Journal.h"
#include "services/update/Signature.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace updates {
namespace {

namespace fs = std::filesystem;
using os::FileDescriptor;

constexpr const char *DATA = "/mnt/data";
constexpr const char *PROJECT = "prj";
constexpr const char *LOGO = "logo";
constexpr const char *NEW_ENDING = ".new";     // beside the folder in force, hidden
constexpr const char *NOTE = ".project";       // in the folder: what was installed
constexpr const char *KEPT = "LangugeSet.cof"; // the program's own file in the project's folder

constexpr std::uint64_t BLOCK = 4096;
constexpr std::uint64_t SPARE = 1U << 20; // stays free: settings are kept there too

const char *folderOf(Kind kind)
{
    return kind == Kind::PROJECT ? PROJECT : LOGO;
}

std::string placeOf(const char *folder)
{
    return panelPath(DATA) + "/" + folder;
}

std::string newPlaceOf(const char *folder)
{
    return panelPath(DATA) + "/." + folder + NEW_ENDING;
}

bool hasRoom(const Container &container)
{
    struct statvfs disk = {};
    if (::statvfs(panelPath(DATA).c_str(), &disk) != 0)
        return false;
    const std::uint64_t free = std::uint64_t(disk.f_bavail) * disk.f_frsize;
    return free >= container.unpackedBytes + container.entries * BLOCK + SPARE;
}

Kind kindOf(const std::string &path)
{
    return os::isFirmware(path) ? Kind::LOGO : Kind::PROJECT;
}

std::string modelIn(const std::string &path)
{
    const os::UpdateFile file = os::readUpdateFile(path);
    return file.kind == os::UpdateFile::Headed ? file.model : std::string();
}

int errorOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::DONE:
        return os::UPDATE_DONE;
    case Outcome::BAD_CONTENT:
        return os::UPDATE_BAD_FILE;
    default:
        return os::UPDATE_NO_PLACE;
    }
}

// An empty folder with the owner and the mode of the one in force.
int makeNew(const char *folder)
{
    const std::string place = newPlaceOf(folder);
    std::error_code error;
    fs::remove_all(place, error);
    if (::mkdir(place.c_str(), 0755) != 0)
        return errno;
    struct stat old = {};
    if (::stat(placeOf(folder).c_str(), &old) != 0)
        return 0;
    const bool taken = ::chown(place.c_str(), old.st_uid, old.st_gid) == 0 &&
                       ::chmod(place.c_str(), old.st_mode & 07777U) == 0;
    return taken ? 0 : errno;
}

// The file of one folder into another, as it is: what a project has of that name counts nothing.
void takeOver(const std::string &fromFolder, const std::string &toFolder)
{
    const std::string from = fromFolder + "/" + KEPT;
    const std::string to = toFolder + "/" + KEPT;
    struct stat info = {};
    std::error_code error;
    if (::lstat(from.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
        return;
    fs::remove_all(to, error);
    if (!fs::copy_file(from, to, error) || ::chown(to.c_str(), info.st_uid, info.st_gid) != 0 ||
        ::chmod(to.c_str(), info.st_mode & 07777U) != 0)
        service::warn(std::string(KEPT) + " is not taken over");
}

std::pair<ino_t, std::int64_t> stampOf(const std::string &path)
{
    struct stat info = {};
    if (::lstat(path.c_str(), &info) != 0)
        return {};
    return {info.st_ino, info.st_mtim.tv_sec * 1'000'000'000LL + info.st_mtim.tv_nsec};
}

int writeNote(const char *folder, const Container &container)
{
    const std::string path = newPlaceOf(folder) + "/" + NOTE;
    std::error_code error;
    fs::remove_all(path, error);
    std::ofstream note(path);
    note << "version=" << container.version << "\nmodel=" << container.model << "\n";
    note.close();
    return note ? 0 : EIO;
}

// All of the file system at once: names, folders and files, in fewer writes than one by one.
int syncDisk()
{
    const FileDescriptor disk(::open(panelPath(DATA).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return disk.isOpen() && ::syncfs(disk.get()) == 0 ? 0 : errno;
}

int exchange(const char *folder)
{
    const std::string from = newPlaceOf(folder);
    const std::string to = placeOf(folder);
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE) == 0)
        return 0;
    // The first one of its kind.
    if (errno == ENOENT)
        return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0
                   ? 0
                   : errno;
    return errno;
}

// The new folder, unpacked, takes the other one's place, with what the program keeps there.
int putInForce(const char *folder, const Container &container)
{
    const std::string kept = placeOf(folder) + "/" + KEPT;
    int error = writeNote(folder, container);
    if (error == 0)
        error = syncDisk();
    const auto stamp = stampOf(kept);
    takeOver(placeOf(folder), newPlaceOf(folder));
    if (error == 0)
        error = syncDisk();
    if (error == 0)
        error = exchange(folder);
    if (error != 0)
        return error;
    // A language that was chosen within those milliseconds.
    if (stampOf(newPlaceOf(folder) + "/" + KEPT) != stamp)
        takeOver(newPlaceOf(folder), placeOf(folder));
    return syncDisk();
}

} // namespace

Checked checkProject(const std::string &path, const Settings &settings)
{
    auto file = std::make_shared<const os::OpenFile>(path);
    if (!file->isOpen())
        return refused(os::UPDATE_BAD_FILE, "it cannot be read", {});
    auto container = readContainer(*file);
    if (!container)
        return refused(os::UPDATE_BAD_FILE, "it is damaged, or none of this service's",
                       modelIn(path));
    const std::string &model = container->model;
    if (container->kind != kindOf(path))
        return refused(os::UPDATE_BAD_FILE, "it is not what its name says", model);
    const bool mayPass = container->signature.empty() && settings.mayBeUnsigned;
    if (!mayPass) {
        const std::string fault =
            signatureFault(container->signedBytes, container->signature, settings.keyring);
        if (!fault.empty())
            return refused(os::UPDATE_BAD_FILE, fault, model);
    }
    if (!hasRoom(*container))
        return refused(os::UPDATE_NO_PLACE, "there is no room for it", model);
    const bool isNewer = container->kind == Kind::PROJECT &&
                         container->version > firmwareVersion().value_or(UINT64_MAX);
    return {isNewer ? os::UPDATE_UNFIT_VERSION : os::UPDATE_DONE, model,
            isNewer ? "it is newer than the firmware" : "", std::move(file), std::move(*container)};
}

int installProject(const Checked &checked, const std::function<bool(std::uint64_t)> &goesOn,
                   std::string &why)
{
    const auto &container = std::get<Container>(checked.content);
    const char *const folder = folderOf(container.kind);
    int error = makeNew(folder);
    const Outcome outcome = error != 0
                                ? Outcome::NO_PLACE
                                : unpack(*checked.file, container, newPlaceOf(folder), goesOn, why);
    if (outcome == Outcome::DONE)
        error = putInForce(folder, container);
    std::error_code none;
    fs::remove_all(newPlaceOf(folder), none); // what was in force, or what has failed
    if (error != 0)
        why = "the disk: " + service::reason(error);
    return error != 0 ? os::UPDATE_NO_PLACE : errorOf(outcome);
}

std::optional<std::uint64_t> projectVersion()
{
    constexpr std::string_view KEY = "version=";
    const std::string note = board::readFile(placeOf(PROJECT) + "/" + NOTE).value_or(std::string());
    if (note.compare(0, KEY.size(), KEY) != 0)
        return std::nullopt;
    return wholeNumber(std::string_view(note).substr(KEY.size(), note.find('\n') - KEY.size()));
}

void removeLeftovers()
{
    std::error_code none;
    for (const char *folder : {PROJECT, LOGO})
        fs::remove_all(newPlaceOf(folder), none);
}

} // namespace updates
