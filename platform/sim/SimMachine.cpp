// KVCORE: what this panel is.
#include "platform/machine.h"
#include "platform/sim/Panel.h"

using sim::Json;
using sim::panel;

namespace {

// Reads a text of the machine's; `unread` is what the function answers where it is null.
int readText(const char *op, const char *field, int read, int unread, std::string &out)
{
    return panel().call(op, Json(), [&](Json &state) {
        const Json &value = state["machine"][field];
        if (value.is_null())
            return unread;
        out = value.get<std::string>();
        return read;
    });
}

} // namespace

namespace KVCORE {

int TMachine::GetHMIType(std::string &model) const
{
    return readText("KVCORE.GetHMIType", "hmiType", 1, 0, model);
}

int TMachine::GetSN(std::string &serialNumber) const
{
    return readText("KVCORE.GetSN", "sn", 1, 0, serialNumber);
}

int TMachine::GetMac(std::string &mac) const
{
    return readText("KVCORE.GetMac", "mac", 1, 0, mac);
}

int TMachine::GetProduct(std::string &product) const
{
    return readText("KVCORE.GetProduct", "product", 1, 0, product);
}

int TMachine::getDeviceId(std::string &id) const
{
    return readText("KVCORE.getDeviceId", "deviceId", 0, -1, id);
}

int TMachine::enableRemote() const
{
    return panel().call("KVCORE.enableRemote", Json(), [](Json &state) {
        const Json &remote = state["machine"]["remote"];
        return remote.is_null() ? 0 : remote.get<int>();
    });
}

} // namespace KVCORE
