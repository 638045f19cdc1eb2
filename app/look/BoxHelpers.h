// The usual ways to run a MessageBox. GUI thread.
#pragma once

#include "app/look/MessageBox.h"

#include <QPoint>
#include <QSize>

// Runs a box of `type` with `text` modally, of the given size, its corner at a point of the
// screen. Returns 1 for OK, 0 for Cancel.
int runBox(int type, QWidget *parent, const QString &text, const QSize &size, const QPoint &corner);

// Same, half the screen in each direction and centred.
int runBox(int type, QWidget *parent, const QString &text);
