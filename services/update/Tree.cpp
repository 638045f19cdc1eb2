#include "services/update/Tree.h"

#include "platform/posix/FileDescriptor.h"
#include "services/common/Journal.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <clocale>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

using os::FileDescriptor;

namespace updates {
namespace {

constexpr std::size_t LONGEST_PATH = 1024;
constexpr mode_t FILE_MODE = 0644;
constexpr mode_t FOLDER_MODE = 0755;

// An archive's names are UTF-8, and so are the disk's: libarchive converts between them by the
// thread's locale, and refuses what that cannot hold.
class Utf8Names
{
public:
    Utf8Names()
        : m_locale(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), m_before(::uselocale(m_locale))
    {
    }
    ~Utf8Names()
    {
        ::uselocale(m_before);
        if (m_locale != nullptr)
            ::freelocale(m_locale);
    }
    Utf8Names(const Utf8Names &) = delete;
    Utf8Names &operator=(const Utf8Names &) = delete;

private:
    locale_t m_locale; // null without such a locale, which leaves the thread's own
    locale_t m_before;
};

struct ArchiveDeleter
{
    void operator()(archive *reader) const { archive_read_free(reader); }
};

// What ends the unpacking.
struct Failure : std::runtime_error
{
    Failure(Outcome how, const std::string &why) : std::runtime_error(why), outcome(how) {}

    Outcome outcome;
};

Failure badContent(const std::string &why)
{
    return {Outcome::BAD_CONTENT, why};
}

Failure noPlace(const std::string &what, int error)
{
    return {Outcome::NO_PLACE, what + ": " + service::reason(error)};
}

// The parts of a path below the folder; "./" in front and "/" behind are a tar's habit.
std::vector<std::string> partsOf(std::string_view path)
{
    if (path.size() > LONGEST_PATH || (!path.empty() && path.front() == '/'))
        throw badContent("a name that is none");
    std::vector<std::string> parts;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), part.size() + 1));
        if (part == "..")
            throw badContent("a name that climbs out");
        if (!part.empty() && part != ".")
            parts.emplace_back(part);
    }
    return parts;
}

class Unpacking
{
public:
    Unpacking(const os::OpenFile &file, const Container &container, const std::string &path,
              const std::function<bool(std::uint64_t)> &goesOn);

    void run();

private:
    static la_ssize_t onRead(archive *, void *self, const void **bytes);
    la_ssize_t nextChunk(const void **bytes);
    bool nextEntry();
    void takeEntry();
    FileDescriptor folderOf(const std::vector<std::string> &parts);
    void makeFolder(int parent, const std::string &name);
    void makeFile(int folder, const std::string &name);
    void writeTo(int file, const void *bytes, std::size_t size, la_int64_t offset);
    [[noreturn]] void fail();

    const Utf8Names m_names;
    const Container &m_container;
    Content m_content;
    const std::function<bool(std::uint64_t)> &m_goesOn;
    std::unique_ptr<archive, ArchiveDeleter> m_reader;
    archive_entry *m_entry = nullptr; // the reader's
    FileDescriptor m_root;
    std::string m_chunk;
    std::optional<Failure> m_reading; // why no more was read
    std::uint64_t m_bytes = 0;
    std::uint32_t m_entries = 0;
};

Unpacking::Unpacking(const os::OpenFile &file, const Container &container, const std::string &path,
                     const std::function<bool(std::uint64_t)> &goesOn)
    : m_container(container),
      m_content(file, container),
      m_goesOn(goesOn),
      m_reader(archive_read_new()),
      m_root(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC))
{
    archive_read_support_format_tar(m_reader.get());
    archive_read_support_filter_gzip(m_reader.get());
    archive_read_support_filter_xz(m_reader.get());
    archive_read_support_filter_zstd(m_reader.get());
}

void Unpacking::run()
{
    if (!m_root.isOpen())
        throw noPlace("the folder for it", errno);
    if (archive_read_open(m_reader.get(), this, nullptr, onRead, nullptr) != ARCHIVE_OK)
        fail();
    while (nextEntry())
        takeEntry();
    // What stands behind the archive's end has been sealed too.
    const void *bytes = nullptr;
    while (!m_content.isAtEnd())
        if (nextChunk(&bytes) < 0)
            fail();
    if (m_entries != m_container.entries || m_bytes != m_container.unpackedBytes)
        throw badContent("not what its seal says");
}

la_ssize_t Unpacking::onRead(archive *, void *self, const void **bytes)
{
    return static_cast<Unpacking *>(self)->nextChunk(bytes);
}

la_ssize_t Unpacking::nextChunk(const void **bytes)
{
    if (m_content.isAtEnd())
        return 0;
    if (!m_goesOn(m_content.bytesRead())) {
        m_reading = Failure(Outcome::STOPPED, "stopped");
        return ARCHIVE_FATAL;
    }
    auto chunk = m_content.next();
    if (!chunk) {
        m_reading = badContent("it cannot be read, or is not what was sealed");
        return ARCHIVE_FATAL;
    }
    m_chunk = std::move(*chunk);
    *bytes = m_chunk.data();
    return static_cast<la_ssize_t>(m_chunk.size());
}

void Unpacking::fail()
{
    if (m_reading)
        throw *m_reading;
    const char *text = archive_error_string(m_reader.get());
    throw badContent(text == nullptr ? "no archive" : text);
}

bool Unpacking::nextEntry()
{
    const int result = archive_read_next_header(m_reader.get(), &m_entry);
    if (result == ARCHIVE_EOF && !m_reading)
        return false;
    if (result != ARCHIVE_OK)
        fail();
    return true;
}

void Unpacking::takeEntry()
{
    const char *name = archive_entry_pathname(m_entry);
    const auto kind = archive_entry_filetype(m_entry);
    if (name == nullptr || archive_entry_hardlink(m_entry) != nullptr ||
        (kind != AE_IFREG && kind != AE_IFDIR) || archive_entry_sparse_count(m_entry) > 0)
        throw badContent("a link, a device or a file with holes in it");
    std::vector<std::string> parts = partsOf(name);
    if (parts.empty())
        return; // the folder itself
    if (++m_entries > m_container.entries)
        throw badContent("more files than its seal says");
    const std::string last = std::move(parts.back());
    parts.pop_back();
    const FileDescriptor folder = folderOf(parts);
    kind == AE_IFDIR ? makeFolder(folder.get(), last) : makeFile(folder.get(), last);
}

// An archive has a folder before what is in it.
FileDescriptor Unpacking::folderOf(const std::vector<std::string> &parts)
{
    FileDescriptor folder(::fcntl(m_root.get(), F_DUPFD_CLOEXEC, 0));
    for (const std::string &part : parts) {
        folder = FileDescriptor(
            ::openat(folder.get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder.isOpen())
            throw badContent("a file before its folder");
    }
    return folder;
}

void Unpacking::makeFolder(int parent, const std::string &name)
{
    if (::mkdirat(parent, name.c_str(), FOLDER_MODE) == 0)
        return;
    if (errno == EEXIST || errno == ENAMETOOLONG)
        throw badContent("a name twice, or one that is none");
    throw noPlace(name, errno);
}

void Unpacking::makeFile(int folder, const std::string &name)
{
    const FileDescriptor file(::openat(
        folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, FILE_MODE));
    if (!file.isOpen() && (errno == EEXIST || errno == ENAMETOOLONG))
        throw badContent("a name twice, or one that is none");
    if (!file.isOpen())
        throw noPlace(name, errno);
    const void *bytes = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    int result = ARCHIVE_OK;
    while ((result = archive_read_data_block(m_reader.get(), &bytes, &size, &offset)) == ARCHIVE_OK)
        writeTo(file.get(), bytes, size, offset);
    if (result != ARCHIVE_EOF || m_reading)
        fail();
    // The next file is written while the disk takes this one.
    ::sync_file_range(file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

void Unpacking::writeTo(int file, const void *bytes, std::size_t size, la_int64_t offset)
{
    m_bytes += size;
    if (m_bytes > m_container.unpackedBytes ||
        static_cast<std::uint64_t>(offset) + size > m_container.unpackedBytes)
        throw badContent("more bytes than its seal says");
    const auto *from = static_cast<const char *>(bytes);
    while (size > 0) {
        const ssize_t count = ::pwrite(file, from, size, offset);
        if (count < 0 && errno != EINTR)
            throw noPlace("the disk", errno);
        const auto written = static_cast<std::size_t>(count < 0 ? 0 : count);
        from += written;
        size -= written;
        offset += static_cast<la_int64_t>(written);
    }
}

} // namespace

Outcome unpack(const os::OpenFile &file, const Container &container, const std::string &path,
               const std::function<bool(std::uint64_t)> &goesOn, std::string &why)
{
    try {
        Unpacking(file, container, path, goesOn).run();
        return Outcome::DONE;
    } catch (const Failure &failure) {
        why = failure.what();
        return failure.outcome;
    }
}

} // namespace updates
