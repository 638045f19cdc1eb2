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

// Keeps Qt from looking for plugins until the loading animation, a GIF, needs one. For the first
// icon of a style sheet it loads the plugin of every image format, though it reads PNG without.
// Once, when the application and with it the platform's plugins are there.
void holdImagePlugins();

// The path of the loading animation. Ends what holdImagePlugins() began.
QString loadingMoviePath();

// Sets the widget's own style sheet only if it differs: a style sheet costs far more to set than
// to compare.
void setStyleOnce(QWidget *widget, const QString &styleSheet);

// Same, but on a hidden widget the style sheet waits until it is shown: start and language change
// then style only what is seen.
void setStyleWhenSeen(QWidget *widget, const QString &styleSheet);

// Sets at once what waits on `page` and in it: before it joins a visible window, whose style sheet
// makes Qt style all of it in any case.
void applyPendingStyles(QWidget *page);

// Shows an image on a label, scaled down to fit. It is loaded when the label is first seen.
void showIcon(QLabel *label, const QString &imageName);

// Sets the dynamic property `mark` that a style sheet asks for, such as "edited" on the field that
// the keyboard is open on, and has the widget take the look.
void markWidget(QWidget *widget, const char *mark, bool on);

// The look of an on/off switch.
void showSwitch(QPushButton *button, bool on);
