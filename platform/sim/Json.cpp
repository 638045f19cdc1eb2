#include "platform/sim/Json.h"

#include <utility>

namespace sim {
namespace {

constexpr std::size_t KEPT_VALUES = 1000;

} // namespace

void appendLatest(Json &list, Json value)
{
    list.push_back(std::move(value));
    if (list.size() > KEPT_VALUES)
        list.erase(list.begin());
}

} // namespace sim
