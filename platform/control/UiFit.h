// Whether a person can read and touch what the screen shows. GUI thread.
#pragma once

#include "platform/control/Json.h"

#include <QWidget>

namespace control {

// What is wrong with `root` (a window or dialog) as it is shown now: a list of
// {"kind", "widget", "detail"}. Kinds:
//   "cut"      a text that its widget cuts off or elides
//   "overlap"  a widget that covers a sibling or leaves its parent
//   "glyph"    a character that no installed font has
//   "small"    a control less than `leastTouch` pixels wide or high
//   "pale"     a text with a contrast under 4.5 to 1 to its ground, 3 to 1 where it is disabled
// What can be scrolled into view is not cut; what is out of view is not checked.
Json fitFindings(QWidget *root, int leastTouch);

// The same for the window that takes touches now: an open list, a dialog, or the main window.
// `leastTouch` is 32 on a screen of less than 480 lines, else 40.
Json fitFindings();

} // namespace control
