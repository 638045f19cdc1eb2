// The identity on the disk: one file, so that a key and another key's certificate never meet.
#pragma once

#include "services/cloud/Identity.h"

#include <optional>
#include <string>

namespace cloud {

class Store
{
public:
    // `path` of the file. What a write that was cut short has left beside it is removed: it holds
    // keys.
    explicit Store(std::string path);

    // The identity that `issuer` has given to `device`; nothing if there is none, or another one's.
    std::optional<Identity> load(const std::string &issuer, const std::string &device) const;
    // Puts it in place of what was there, at once and on the disk; false, with the reason in the
    // journal, if that cannot be.
    bool keep(const std::string &issuer, const std::string &device, const Identity &identity) const;

private:
    std::string m_path;
};

} // namespace cloud
