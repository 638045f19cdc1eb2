// The modem as the interface tells it: ModemManager's facts and NetworkManager's profile together.
#pragma once

#include "services/network/Apn.h"
#include "services/network/Burst.h"
#include "services/network/Modems.h"
#include "services/network/Network.h"

#include <functional>
#include <optional>
#include <string>

namespace network {

struct ModemStatus
{
    int csq = 99; // 0 to 31, 99 unknown
    std::string iccid;
    std::string imei;
    std::string network;
    bool isAttached = false;
};
bool operator==(const ModemStatus &one, const ModemStatus &other);

// For the modem that is plugged in, or only away for a moment. All functions but the constructor:
// NoDevice without one.
class Cellular
{
public:
    // `told` is called with the status after it has changed, bursts joined.
    Cellular(Network &network, const Modems &modems, std::function<void(const ModemStatus &)> told);

    // That of a modem that is away is the last one.
    Outcome status(ModemStatus &status);

    // Calls `told` once, soon; the password has to be asked for.
    void apn(std::function<void(Outcome outcome, const Apn &apn)> told);
    // `done` is called once the profile is kept; it is then in force at once.
    void setApn(const Apn &apn, Done done);

    // ModemManager or NetworkManager tells something new.
    void changed() { m_burst.changed(); }

private:
    const Device *modem() const;
    void tell();

    Network &m_network;
    const Modems &m_modems;
    std::function<void(const ModemStatus &)> m_told;
    ModemStatus m_last;
    std::optional<ModemStatus> m_lastTold;
    Burst m_burst;
    Calls m_calls;
};

// As the interface has them; the first two are floating references.
GVariant *toVariant(const ModemStatus &status);
GVariant *toVariant(const Apn &apn);
Apn toApn(GVariant *apn);

} // namespace network
