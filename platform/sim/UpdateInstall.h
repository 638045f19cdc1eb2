#pragma once

#include "platform/posix/OpenFile.h"
#include "platform/posix/UpdateFile.h"

#include <cstdint>
#include <fstream>
#include <string>

namespace sim {

// A running install: the copy grows under another name in the panel's folder /mnt/data/update and
// is renamed to "project" or "firmware" with its ending when it is whole. Destroyed before that it
// leaves nothing behind. There is one at a time.
class UpdateInstall
{
public:
    enum Error {
        ERR_SOURCE = -1, // the file is damaged, has gone or has changed
        ERR_TARGET = -2, // the panel's folder does not take it
    };

    explicit UpdateInstall(const std::string &path);
    ~UpdateInstall();
    UpdateInstall(const UpdateInstall &) = delete;
    UpdateInstall &operator=(const UpdateInstall &) = delete;

    const std::string &path() const { return m_path; }
    const os::UpdateFile &file() const { return m_file; }

    // Copies until `percent` of the file are there. Returns 0 or an Error.
    int copyTo(int percent);
    // Copies what is left and gives the file its name. Returns 0 or an Error.
    int finish();

private:
    const std::string m_path;
    const os::UpdateFile m_file;
    const os::OpenFile m_source;
    std::ofstream m_copy;
    std::uint64_t m_copied = 0;
};

} // namespace sim
