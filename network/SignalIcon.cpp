#include "network/SignalIcon.h"

#include "network/AccessPoint.h"

namespace {

constexpr int STRONGEST = 100;
constexpr int STEPS = 4; // icons above the one without a signal
constexpr int BEST_CSQ = 31;
constexpr int UNKNOWN_CSQ = 99;

} // namespace

QString wifiSignalIcon(const netT::stApInfo_tag &accessPoint)
{
    return QStringLiteral("wifi%1_%2.png")
        .arg(isSecured(accessPoint) ? 2 : 1)
        .arg((accessPoint.nLevel * STEPS + STRONGEST - 1) / STRONGEST);
}

std::optional<int> modemBars(int csq)
{
    if (csq == UNKNOWN_CSQ)
        return 0;
    if (csq < 0 || csq > BEST_CSQ)
        return std::nullopt;
    return (csq + 7) / 8;
}

QString modemSignalIcon(int bars)
{
    return QStringLiteral("4G_%1.png").arg(bars);
}
