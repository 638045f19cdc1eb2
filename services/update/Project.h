// Projects and logos: from a file on a U-disk to the folder that is in force.
#pragma once

#include "services/update/Checked.h"
#include "services/update/Settings.h"
#include "services/update/Tree.h"

#include <optional>
#include <string>

namespace updates {

// Looks at a file: form, signature, versions, room on the disk. Reads its beginning only. A model
// that is not the panel's is no error here: the operator is told both.
Checked checkProject(const std::string &path, const Settings &settings);

// Unpacks it beside the folder that is in force, has all of it on the disk, and exchanges the two.
// After a power cut, whenever it comes, one of them is whole and in force. What the program itself
// keeps in the project's folder is taken over. Returns os::UpdateError.
int installProject(const Checked &checked, const std::function<bool(std::uint64_t)> &goesOn,
                   std::string &why);

// Of the project in force; nothing if none was installed by this service.
std::optional<std::uint64_t> projectVersion();

// Removes what an install has left that was cut short.
void removeLeftovers();

} // namespace updates
