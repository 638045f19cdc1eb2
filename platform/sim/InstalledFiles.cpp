#include "platform/sim/InstalledFiles.h"

#include "platform/sim/Root.h"

#include <filesystem>
#include <iostream>

namespace sim {
namespace {

namespace fs = std::filesystem;

// Where the install rule puts them; see resources/CMakeLists.txt.
constexpr const char *ITEM_FILES = "/mnt/tarni/app/hmiapp/bin/NetWorkTest";

} // namespace

void installFiles()
{
    const fs::path target = panelRoot() + ITEM_FILES;
    try {
        if (fs::exists(fs::symlink_status(target)))
            return;
        fs::create_directories(target.parent_path());
        fs::copy(SYSSET_ITEM_FILES_DIR, target, fs::copy_options::recursive);
    } catch (const fs::filesystem_error &error) {
        std::cerr << "sysset-sim: cannot install: " << error.what() << "\n";
    }
}

} // namespace sim
