// Looks that are fixed to one widget and change with its state. GUI thread.
#pragma once

#include <QString>

class QEvent;
class QLabel;
class QObject;
class QPushButton;
class QWidget;

// The key click that every press sounds first.
void keyClick();

// Whether `event`, seen by an event filter of the widget `watched`, is a press that it obeys: a
// disabled widget still hands its presses to the filter.
bool isPress(const QObject *watched, const QEvent *event);

// The path of an image of the program, "name" with its ending: "UsbInPut.png".
QString imagePath(const QString &name);

// Keeps Qt from looking for plugins from here on: it loads every image format that it finds for
// the first icon of a style sheet, a quarter of a megabyte for pictures that need none of them.
// After the application is constructed, which takes those for the platform.
void holdPlugins();

// The path of the loading animation. A GIF is read by a plugin: ends what holdPlugins() began.
QString loadingMoviePath();

// Sets the widget's own style sheet only if it differs: a style sheet costs far more to set than
// to compare.
void setStyleOnce(QWidget *widget, const QString &styleSheet);

// Same for a page that may be hidden: the style sheet waits until `widget` is shown, so that start
// and language change pay for what is seen alone.
void setStyleWhenSeen(QWidget *widget, const QString &styleSheet);

// Shows or hides a part of a page. On a page that is not seen the part is not laid out for it,
// which would read the glyphs of all its texts.
void showPart(QWidget *part, bool shown);

// Sets what waits on `page` and in it: right before it joins a window that is seen, which goes
// through all of it anyway.
void wearLateStyles(QWidget *page);

// Shows an image on a label, scaled down to fit: "image: url(...);". Like the switch's, it is
// loaded when it is first seen.
void showIcon(QLabel *label, const QString &imageName);

// Sets the dynamic property `mark` that a style sheet asks for, such as "edited" on the field that
// the keyboard is open on, and has the widget take the look.
void markWidget(QWidget *widget, const char *mark, bool on);

// The look of an on/off switch.
void showSwitch(QPushButton *button, bool on);
