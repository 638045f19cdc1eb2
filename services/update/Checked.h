#pragma once

#include "services/update/Bundle.h"
#include "services/update/Container.h"

#include <memory>
#include <string>
#include <variant>

namespace updates {

// A file that has been looked at, and stays open: what is installed is what was checked, whatever
// becomes of the stick.
struct Checked
{
    int error = 0;     // os::UpdateError
    std::string model; // that the file names, also where it is refused; "" if it names none
    std::string why;   // it is refused
    std::shared_ptr<const os::OpenFile> file; // these two if error is 0 or UPDATE_UNFIT_VERSION
    std::variant<Container, Bundle> content;
};

inline Checked refused(int error, const std::string &why, const std::string &model)
{
    return {error, model, why, nullptr, {}};
}

} // namespace updates
