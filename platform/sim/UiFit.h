// Whether a person can read and touch what the screen shows. GUI thread.
#pragma once

#include "platform/sim/Json.h"

#include <QColor>
#include <QWidget>

namespace sim {

// What is wrong with `root` (a window or dialog) as it is shown now: a list of
// {"kind", "widget", "detail"}. Kinds:
//   "cut"      a text that its widget cuts off or elides
//   "overlap"  a widget that covers a sibling or leaves its parent
//   "glyph"    a character that no installed font has
//   "small"    a control less than `leastTouch` pixels wide or high
//   "pale"     a text with a contrast under 4.5 to 1 to its ground, 3 to 1 where it is disabled
// What scrolling brings into view is not cut; what is out of view is not looked at.
Json fitFindings(QWidget *root, int leastTouch);

// The same of what takes the operator's touches now: an open list, a dialog, or the main window.
// Controls are to be 32 pixels large on a screen of less than 480 lines, 40 on others.
Json fitFindings();

// Contrast ratio of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio").
double contrast(const QColor &one, const QColor &other);

} // namespace sim
