// The shape of the simulated panel's state: what paths there are, what each may hold, how a
// request changes it. Pure functions over JSON; the panel guards the tree itself.
#pragma once

#include "platform/sim/Json.h"

#include <string>

namespace sim {

// Paths are dotted: names of objects, indices of lists. A key of an open map (words, net.ping,
// net.cable, ...) may hold dots itself: the shortest key that exists is meant, else all that is
// left of the path is a new key. An empty path is everything.

// The value at `path`. Throws BadRequest if there is none.
const Json &valueAt(const Json &state, const std::string &path);

// Sets `path` to `value`. Of a record, only the fields that `value` names change; an open map and
// a list are replaced; the index behind a list's last appends. Throws BadRequest, with `state`
// untouched, if the path or anything in the value does not fit.
void change(Json &state, const std::string &path, const Json &value);

// Lays `part` over `state`: objects, open maps included, merge; lists replace. Throws as change().
void overlay(Json &state, const Json &part);

} // namespace sim
