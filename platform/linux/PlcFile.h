// PLC program files of the current format. docs/porting/plc.md has their layout.
#pragma once

#include "platform/plc.h"

#include <cstdint>
#include <string>
#include <vector>

namespace board {

// An object for one file. Any thread, an object of its own each.
class PlcFile
{
public:
    // The numbers that CLoadPlcInfo returns.
    enum Error {
        UNREADABLE = -1,
        DAMAGED = -2, // or above a limit, or of a version that is not known
        OTHER_FORMAT = CLoadPlcInfo::ERR_NOT_THIS_FORMAT,
    };

    // Reads the file `path`. Returns 0 or an Error, and fault() says why. Blocks for the reading.
    int read(const std::string &path);
    // The same with the bytes of a file.
    int parse(std::vector<std::uint8_t> bytes);

    // What a file that was read holds. Its version has the type of the PLC in the upper half, see
    // plcVersion().
    const Plc5VDownLoadInfo &info() const { return m_info; }
    const tag &extension() const { return m_extension; }

    // One line for the engineer; holds nothing of the file's content.
    const std::string &fault() const { return m_fault; }

private:
    struct Section;
    struct Kind;

    bool load(const std::string &path);
    bool parseHeader();
    bool parseSections();
    bool parseSection();
    bool take(const Section &section);
    bool takePassword(const Section &section, bool &isThere, tagPdata &password) const;
    bool takeData(const Section &section, bool &isThere, std::vector<std::uint8_t> &data) const;
    bool takeProgram(const Section &section);
    bool takeMemory(const Section &section);
    bool fails(const std::string &fault);

    std::uint32_t number(std::size_t at, std::size_t size) const;
    std::vector<std::uint8_t> contentOf(const Section &section) const;

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_at = 0; // where the next section begins
    int m_section = 0;    // its number, from 1
    Plc5VDownLoadInfo m_info;
    tag m_extension;
    bool m_hasExtension = false;
    std::size_t m_programSize = 0; // of all blocks
    std::string m_fault;
};

// Type and version of a PLC, as nVersion holds both. Type 0 is any type.
struct PlcModel
{
    int type = 0;
    int version = 0;
};
constexpr int LARGEST_PLC_TYPE = 0x7FFF;
constexpr int LARGEST_PLC_VERSION = 0xFFFF;
int plcVersion(const PlcModel &model);
PlcModel plcModel(int plcVersion);

} // namespace board
