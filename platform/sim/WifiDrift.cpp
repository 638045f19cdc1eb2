#include "platform/sim/WifiDrift.h"

#include <algorithm>

namespace sim {
namespace {

constexpr int LARGEST_STEP = 8;
constexpr int WEAKEST = 1;
constexpr int STRONGEST = 100;
constexpr int STEPS_TO_A_MOVE = 3; // on average

int pick(std::minstd_rand &random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

void move(Json &from, Json &to, int index)
{
    to.push_back(from.at(static_cast<std::size_t>(index)));
    from.erase(static_cast<std::size_t>(index));
}

} // namespace

void driftWifi(Json &wifi, std::minstd_rand &random)
{
    Json &inRange = wifi["aps"];
    Json &away = wifi["away"];
    for (Json &ap : inRange) {
        const int level = ap["level"].get<int>() + pick(random, -LARGEST_STEP, LARGEST_STEP);
        ap["level"] = std::clamp(level, WEAKEST, STRONGEST);
    }
    if (pick(random, 1, STEPS_TO_A_MOVE) > 1)
        return;
    if (!away.empty())
        move(away, inRange, 0);
    else if (!inRange.empty())
        move(inRange, away, pick(random, 0, static_cast<int>(inRange.size()) - 1));
}

} // namespace sim
