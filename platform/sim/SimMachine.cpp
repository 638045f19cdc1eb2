// KVCORE: what this panel is.
#include "platform/machine.h"
#include "platform/sim/MachineText.h"

using sim::Json;
using sim::panel;

namespace KVCORE {

int TMachine::GetHMIType(std::string &model) const
{
    return sim::readMachineText("KVCORE.GetHMIType", "hmiType", 1, 0, model);
}

int TMachine::GetSN(std::string &serialNumber) const
{
    return sim::readMachineText("KVCORE.GetSN", "sn", 1, 0, serialNumber);
}

int TMachine::GetMac(std::string &mac) const
{
    return sim::readMachineText("KVCORE.GetMac", "mac", 1, 0, mac);
}

int TMachine::GetProduct(std::string &product) const
{
    return sim::readMachineText("KVCORE.GetProduct", "product", 1, 0, product);
}

int TMachine::getDeviceId(std::string &id) const
{
    return sim::readMachineText("KVCORE.getDeviceId", "deviceId", 0, -1, id);
}

int TMachine::enableRemote() const
{
    return panel().call("KVCORE.enableRemote", Json(), [](Json &state) {
        const Json &remote = state["machine"]["remote"];
        return remote.is_null() ? 0 : remote.get<int>();
    });
}

} // namespace KVCORE
