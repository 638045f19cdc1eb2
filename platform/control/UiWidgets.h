// Finding, describing and touching the program's widgets. All functions: GUI thread.
#pragma once

#include "platform/control/Json.h"

#include <QLine>
#include <QRect>
#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

namespace control {

// The program's main window: the largest window without a parent, visible ones first; its origin
// is the screen's. Throws BadRequest if there is no window at all.
QWidget *mainWindow();

// All widgets without a parent, the main window first.
QVector<QWidget *> rootWidgets();

// All widgets of that object name in the order of the tree.
QVector<QWidget *> widgetsNamed(const QString &name);

// Why a finger cannot press the widget now ("is not visible"), empty if it can.
QString obstacle(const QWidget *widget);

// Where the widget is on the panel's screen.
QRect screenRect(const QWidget *widget);

// The widget and all in it as the dump shows them.
Json dumpWidget(const QWidget *widget);

// The panel's screen: what the platform says, else the main window's size.
QSize panelScreen();

// Saves what the screen shows, dialogs and pop-ups included, as the PNG file `path`, whole or not
// at all. Throws BadRequest if it cannot be written.
void shootScreen(const QString &path);

// Has pictures dimmed as a backlight at `brightness()` percent, 1 to 100, shows them.
void dimPictures(std::function<int()> brightness);

// Queues a press and a release at the centre of `row` of `widget`: the row of a list or combo box,
// the tab of a tab widget; a negative `row` is the widget itself. Throws BadRequest if there is no
// such row.
void pressWidget(QWidget *widget, int row);

// Whether the widget's rows are pressed one by one.
bool hasRows(const QWidget *widget);

// Where on the screen a finger touches for that; of a combo box always the box itself.
QPoint pressPoint(QWidget *widget, int row);

// The way of a finger that drags the slider's handle to `value`, in the widget's coordinates.
// Throws BadRequest if it is no slider or has no such value.
QLine slidePath(const QWidget *widget, int value);

// Queues a drag of the slider's handle to `value`. Throws BadRequest if it is no slider or has no
// such value.
void dragSlider(QWidget *widget, int value);

} // namespace control
