// The texts of the state's "machine".
#pragma once

#include "platform/sim/Panel.h"

#include <string>

namespace sim {

// The platform call `op` that reads the text `field` into `out`. Returns `read`, or, with `out`
// untouched, `unread` where the text is null.
inline int readMachineText(const char *op, const char *field, int read, int unread,
                           std::string &out)
{
    return panel().call(op, Json(), [&](Json &state) {
        const Json &value = state["machine"][field];
        if (value.is_null())
            return unread;
        out = value.get<std::string>();
        return read;
    });
}

} // namespace sim
