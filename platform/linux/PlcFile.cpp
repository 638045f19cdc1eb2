#include "platform/linux/PlcFile.h"

#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <zlib.h>

namespace board {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The bytes around "PLC" show a file that went through a transfer of texts.
constexpr std::array<std::uint8_t, 8> MARK = {0x89, 'P', 'L', 'C', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t HEADER = 32;
constexpr std::size_t HEADER_SUM = 28;
constexpr std::size_t SECTION_HEADER = 12;
constexpr std::size_t SECTION_SUM = 8;
constexpr std::uint32_t FORMAT_VERSION = 1;
constexpr std::uint32_t HIDES_SUBPROGRAMS = 1; // the only flag

constexpr std::size_t LARGEST_FILE = 2U << 20U;
constexpr std::size_t LARGEST_PROGRAM = 1U << 20U;
constexpr std::size_t LARGEST_SECTION = 65536;
constexpr std::size_t LARGEST_PASSWORD = 32;
constexpr std::size_t MOST_REGISTERS = 0xFF00; // above are those of the download itself
constexpr std::size_t RANGE_HEADER = 2;
constexpr std::size_t LARGEST_RANGE = RANGE_HEADER + 2 * MOST_REGISTERS;
constexpr std::uint32_t HIGHEST_BAUD = 10000000;

enum SectionKind : std::uint32_t {
    DOWNLOAD_PASSWORD = 1,
    UPLOAD_PASSWORD,
    PROGRAM,
    PARAMETERS,
    MEMORY,
    CAM,
    EXTENSION,
};

std::uint32_t sumOf(const std::uint8_t *bytes, std::size_t size, std::uint32_t before = 0)
{
    return static_cast<std::uint32_t>(crc32_z(before, bytes, size));
}

std::string systemFault(int error)
{
    return std::generic_category().message(error);
}

} // namespace

struct PlcFile::Section
{
    std::uint32_t kind;
    std::size_t begin;
    std::size_t size;
};

struct PlcFile::Kind
{
    std::uint32_t kind;
    std::size_t largest;
    bool (*take)(PlcFile &file, const Section &section);
};

int PlcFile::read(const std::string &path)
{
    return load(path) ? parse(std::move(m_bytes)) : UNREADABLE;
}

int PlcFile::parse(std::vector<std::uint8_t> bytes)
{
    m_bytes = std::move(bytes);
    m_info = {};
    m_extension = {};
    m_hasExtension = false;
    m_programSize = 0;
    if (m_bytes.size() < MARK.size() || !std::equal(MARK.begin(), MARK.end(), m_bytes.begin())) {
        m_fault = "not a file of the current format";
        return OTHER_FORMAT;
    }
    return parseHeader() && parseSections() ? 0 : DAMAGED;
}

bool PlcFile::load(const std::string &path)
{
    // Without O_NONBLOCK a pipe of that name would be waited for.
    const os::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        return fails(systemFault(errno));
    if (!S_ISREG(status.st_mode))
        return fails("not a regular file");
    m_bytes.assign(LARGEST_FILE + 1, 0); // one more, to know a larger one
    std::size_t size = 0;
    ssize_t got = 0;
    while (size < m_bytes.size() &&
           (got = ::read(file.get(), &m_bytes[size], m_bytes.size() - size)) > 0)
        size += static_cast<std::size_t>(got);
    if (got < 0)
        return fails(systemFault(errno));
    m_bytes.resize(size);
    return true;
}

// The mark is right.
bool PlcFile::parseHeader()
{
    if (m_bytes.size() > LARGEST_FILE)
        return fails("larger than " + std::to_string(LARGEST_FILE) + " bytes");
    if (m_bytes.size() < HEADER)
        return fails("cut off in its header");
    if (number(8, 2) != FORMAT_VERSION)
        return fails("format version " + std::to_string(number(8, 2)) + " is not known");
    if (number(HEADER_SUM, 4) != sumOf(m_bytes.data(), HEADER_SUM))
        return fails("the header's checksum is wrong");
    const std::uint32_t flags = number(16, 2);
    const PlcModel model{static_cast<int>(number(24, 2)), static_cast<int>(number(26, 2))};
    if (flags > HIDES_SUBPROGRAMS || number(18, 2) != 0 || model.type > LARGEST_PLC_TYPE ||
        number(20, 4) > HIGHEST_BAUD)
        return fails("a value of the header is out of its range");
    const auto byte = [this](std::size_t at) { return static_cast<int>(m_bytes[at]); };
    m_info.serial = {byte(10), byte(11), static_cast<int>(number(20, 4)),
                     byte(12), byte(13), byte(14)};
    m_info.nVersion = plcVersion(model);
    m_info.bMask = flags == HIDES_SUBPROGRAMS;
    return true;
}

bool PlcFile::parseSections()
{
    m_at = HEADER;
    const int count = m_bytes[15];
    for (m_section = 1; m_section <= count; ++m_section)
        if (!parseSection())
            return false;
    return m_at == m_bytes.size() || fails("goes on behind its last section");
}

bool PlcFile::parseSection()
{
    const std::string name = "section " + std::to_string(m_section);
    if (m_bytes.size() - m_at < SECTION_HEADER)
        return fails(name + " is cut off");
    const Section section{number(m_at, 2), m_at + SECTION_HEADER, number(m_at + 4, 4)};
    if (section.size > m_bytes.size() - section.begin)
        return fails(name + " is cut off");
    const std::uint32_t sum = sumOf(m_bytes.data() + section.begin, section.size,
                                    sumOf(m_bytes.data() + m_at, SECTION_SUM));
    if (sum != number(m_at + SECTION_SUM, 4))
        return fails("the checksum of " + name + " is wrong");
    if (number(m_at + 2, 2) != 0 || !take(section))
        return fails(name + " of kind " + std::to_string(section.kind) +
                     " is not known, out of its range or one too many");
    m_at = section.begin + section.size;
    return true;
}

bool PlcFile::take(const Section &section)
{
    static constexpr Kind KINDS[] = {
        {DOWNLOAD_PASSWORD, LARGEST_PASSWORD,
         [](PlcFile &file, const Section &found) {
             return file.takePassword(found, file.m_info.bDownLoadPasswd,
                                      file.m_info.downLoadPasswd);
         }},
        {UPLOAD_PASSWORD, LARGEST_PASSWORD,
         [](PlcFile &file, const Section &found) {
             return file.takePassword(found, file.m_info.bUpLoadProtect, file.m_info.upLoadPasswd);
         }},
        {PROGRAM, LARGEST_PROGRAM,
         [](PlcFile &file, const Section &found) { return file.takeProgram(found); }},
        {PARAMETERS, LARGEST_SECTION,
         [](PlcFile &file, const Section &found) {
             return file.takeData(found, file.m_info.bPara, file.m_info.para.data);
         }},
        {MEMORY, LARGEST_RANGE,
         [](PlcFile &file, const Section &found) { return file.takeMemory(found); }},
        {CAM, LARGEST_SECTION,
         [](PlcFile &file, const Section &found) {
             return file.takeData(found, file.m_info.bCam, file.m_info.cam.data);
         }},
        {EXTENSION, LARGEST_SECTION,
         [](PlcFile &file, const Section &found) {
             return file.takeData(found, file.m_hasExtension, file.m_extension.data);
         }},
    };
    const auto *kind = std::find_if(std::begin(KINDS), std::end(KINDS),
                                    [&](const Kind &known) { return known.kind == section.kind; });
    return kind != std::end(KINDS) && section.size > 0 && section.size <= kind->largest &&
           kind->take(*this, section);
}

bool PlcFile::takePassword(const Section &section, bool &isThere, tagPdata &password) const
{
    Bytes bytes;
    if (!takeData(section, isThere, bytes))
        return false;
    password.sData.assign(bytes.begin(), bytes.end());
    return true;
}

bool PlcFile::takeData(const Section &section, bool &isThere, Bytes &data) const
{
    if (isThere)
        return false;
    isThere = true;
    data = contentOf(section);
    return true;
}

bool PlcFile::takeProgram(const Section &section)
{
    m_programSize += section.size;
    if (m_programSize > LARGEST_PROGRAM)
        return false;
    m_info.bProgram = true;
    m_info.program.push_back({contentOf(section)});
    return true;
}

// The address, then its words.
bool PlcFile::takeMemory(const Section &section)
{
    if (section.size <= RANGE_HEADER || section.size % 2 != 0)
        return false;
    const std::size_t address = number(section.begin, 2);
    const std::size_t count = (section.size - RANGE_HEADER) / 2;
    if (address + count > MOST_REGISTERS)
        return false;
    devmemorydataitem_t range;
    range.nAddress = static_cast<int>(address);
    for (std::size_t i = 0; i < count; ++i)
        range.values.push_back(
            static_cast<std::uint16_t>(number(section.begin + RANGE_HEADER + 2 * i, 2)));
    m_info.bMemory = true;
    m_info.memory.push_back(std::move(range));
    return true;
}

bool PlcFile::fails(const std::string &fault)
{
    m_fault = fault;
    return false;
}

// Little-endian; the bytes are there.
std::uint32_t PlcFile::number(std::size_t at, std::size_t size) const
{
    std::uint32_t value = 0;
    for (std::size_t i = size; i-- > 0;)
        value = value << 8U | m_bytes[at + i];
    return value;
}

std::vector<std::uint8_t> PlcFile::contentOf(const Section &section) const
{
    const auto begin = m_bytes.begin() + static_cast<std::ptrdiff_t>(section.begin);
    return {begin, begin + static_cast<std::ptrdiff_t>(section.size)};
}

int plcVersion(const PlcModel &model)
{
    return model.type * (LARGEST_PLC_VERSION + 1) + model.version;
}

PlcModel plcModel(int plcVersion)
{
    const int base = LARGEST_PLC_VERSION + 1;
    return {plcVersion / base, plcVersion % base};
}

} // namespace board
