// Machine information: what this panel is.
#pragma once

#include <string>

namespace KVCORE {

// Text comes back as UTF-8 and is untouched on failure. All functions: any thread, an object of
// its own each.
class TMachine
{
public:
    // The model, as projects name it ("KV070T"). Returns 1; 0 if the panel does not know it;
    // negative if the reading service fails.
    int GetHMIType(std::string &model) const;
    // Returns not 0; 0 on failure.
    int GetSN(std::string &serialNumber) const;
    // Returns not 0; 0 on failure.
    int GetMac(std::string &mac) const;
    // Returns not 0; 0 on failure.
    int GetProduct(std::string &product) const;
    // The identifier that the remote service knows the panel by. Returns 0 or more; negative on
    // failure.
    int getDeviceId(std::string &id) const;
    // Not 0 if remote access is switched on for this panel.
    int enableRemote() const;
};

} // namespace KVCORE
