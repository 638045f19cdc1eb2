#include "services/network/Penalties.h"

#include "services/common/Journal.h"

namespace network {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds SETTLES = 2s;
constexpr std::chrono::milliseconds BETWEEN = 10s;
// A modem is dialled anew, which may come to the same again.
constexpr std::chrono::milliseconds BETWEEN_CALLS = 10min;

} // namespace

void Penalties::changed(const Device &device)
{
    if (device.isActive())
        m_watches[&device].timer.start(SETTLES, [this, &device] { look(device); });
}

void Penalties::look(const Device &device)
{
    if (!device.isOn() || !device.isPenalised())
        return;
    Watch &watch = m_watches[&device];
    const auto now = Clock::now();
    const auto pause = device.kind() == Kind::Modem ? BETWEEN_CALLS : BETWEEN;
    if (watch.mended && now - *watch.mended < pause) {
        const auto left = *watch.mended + pause - now;
        return watch.timer.start(std::chrono::ceil<std::chrono::milliseconds>(left),
                                 [this, &device] { look(device); });
    }
    watch.mended = now;
    service::say(device.name() + " leads somewhere, and its metric is put right");
    m_mend(device);
}

} // namespace network
