// What each place of the state tree may hold.
#pragma once

#include "platform/sim/Json.h"

#include <string>

namespace sim {

// The shape of the tree, itself as JSON:
// - an object has these fields; with the one key "*" it is an open map of any keys, with "#" of
//   decimal numbers; with the one key "any of" it is one of the listed shapes;
// - a list [SHAPE] has any number of such elements, [SHAPE, N] has exactly N;
// - a text is a single value: "text", "bool", "int", "LOW..HIGH" (a whole number), "A|B|C" (one of
//   these texts); "?" behind it allows null, "=VALUE" is what it is in a new list element.
const Json &stateSchema();

// What an element of this shape holds before anything is set.
Json initialValue(const Json &shape);

// Throws BadRequest, naming `path`, unless the single value `value` fits `shape`.
void checkLeaf(const std::string &shape, const Json &value, const std::string &path);

} // namespace sim
