// The panel's screen, and places on it. GUI thread.
#pragma once

#include <QPoint>
#include <QSize>

class QWidget;

// Size of the display in pixels, asked of the board each time. A board that does not answer has the
// size that it had before, or 800 by 480.
QSize screenSize();

// The least height of what a finger touches, in pixels: a twelfth of the screen's, 32 at least.
int touchHeight();

// `size` scaled by the two factors, truncated toward zero.
QSize fractionOf(const QSize &size, double widthFactor, double heightFactor);

// Fixes the size of the top-level widget `window` and puts its corner at `corner`, a point of the
// panel's screen. On a panel the main window covers the screen from (0, 0) on; on a desktop it
// stands anywhere, and what opens over it goes with it.
void placeOnScreen(QWidget *window, const QSize &size, const QPoint &corner);

// Same, with the corner measured from the corner of `page`, and the window kept wholly on the
// screen.
void placeOverPage(QWidget *window, const QSize &size, const QWidget *page, const QPoint &offset);
