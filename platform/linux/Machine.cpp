// KVCORE: what this panel is. panel.conf has the last word on each fact.
#include "platform/machine.h"

#include "platform/board.h"
#include "platform/linux/PanelConf.h"
#include "platform/posix/Facts.h"

#include <array>
#include <systemd/sd-id128.h>

namespace {

constexpr int FAILED = -1;
constexpr int FOUND = 1;
constexpr int UNKNOWN = 0;

// Of this program alone, so that the identifier says nothing about the machine's own
// (machine-id(5)).
constexpr sd_id128_t PROGRAM_ID{{0x5a, 0xd1, 0x2c, 0x9e, 0x74, 0xb3, 0x4f, 0x06, 0x8d, 0x61, 0xe0,
                                 0x3b, 0x97, 0x2f, 0xc4, 0x18}};

int give(const std::string &fact, int found, int unknown, std::string &out)
{
    if (fact.empty())
        return unknown;
    out = fact;
    return found;
}

std::string either(const std::string &named, const std::string &asked)
{
    return named.empty() ? asked : named;
}

// 32 hexadecimal digits.
std::string machineDerivedId()
{
    sd_id128_t id{};
    if (sd_id128_get_machine_app_specific(PROGRAM_ID, &id) < 0)
        return {};
    std::array<char, SD_ID128_STRING_MAX> text{};
    return sd_id128_to_string(id, text.data());
}

} // namespace

namespace KVCORE {

int TMachine::GetHMIType(std::string &model) const
{
    return give(either(board::panelConf().model, board::boardModel()), FOUND, UNKNOWN, model);
}

int TMachine::GetSN(std::string &serialNumber) const
{
    return give(either(board::panelConf().serial, board::boardSerial()), FOUND, UNKNOWN,
                serialNumber);
}

int TMachine::GetMac(std::string &mac) const
{
    return give(either(board::panelConf().mac, board::ethernetMac()), FOUND, UNKNOWN, mac);
}

int TMachine::GetProduct(std::string &product) const
{
    return give(board::panelConf().product, FOUND, UNKNOWN, product);
}

int TMachine::getDeviceId(std::string &id) const
{
    return give(either(board::panelConf().deviceId, machineDerivedId()), 0, FAILED, id);
}

int TMachine::enableRemote() const
{
    return board::panelConf().remote ? 1 : 0;
}

} // namespace KVCORE

namespace PLATFORM {

int CPlatCpu::getCpuId(std::string &id)
{
    return give(board::processorId(), 0, FAILED, id);
}

int CPlatBoard::getKVxxx(std::string &model)
{
    return give(either(board::panelConf().board, board::boardModel()), 0, FAILED, model);
}

} // namespace PLATFORM
