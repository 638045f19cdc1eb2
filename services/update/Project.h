// Projects and logos: from a file on a U-disk to the folder that is in force.
#pragma once

#include "services/update/Container.h"
#include "services/update/Settings.h"
#include "services/update/Tree.h"

#include <memory>
#include <string>

namespace updates {

// A file that has been looked at, and stays open: what is installed is what was checked, whatever
// becomes of the stick.
struct Checked
{
    int error = 0;     // os::UpdateError
    std::string model; // that the file names, also where it is refused; "" if it names none
    std::string why;   // it is refused
    std::shared_ptr<const os::OpenFile> file;
    Container container; // these two if error is 0 or UPDATE_UNFIT_VERSION
};

// Looks at a file: form, signature, versions, room on the disk. Reads its beginning only. A model
// that is not the panel's is no error here: the operator is told both.
Checked checkProject(const std::string &path, const Settings &settings);

// Unpacks it beside the folder that is in force, has all of it on the disk, and exchanges the two.
// After a power cut, whenever it comes, one of them is whole and in force. What the program itself
// keeps in the project's folder is taken over. Returns os::UpdateError.
int installProject(const Checked &checked, const std::function<bool(std::uint64_t)> &goesOn,
                   std::string &why);

// Removes what an install has left that was cut short.
void removeLeftovers();

} // namespace updates
