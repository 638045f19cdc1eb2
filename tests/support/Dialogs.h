// Hands for tests: works modal dialogs through the event loop while their exec() runs. GUI thread.
#pragma once

#include <QString>

#include <functional>

class QWidget;

// Everything below is asked for before the dialog opens, and done in the order of asking. What no
// dialog takes within ten seconds fails the test and hides the dialogs that are open.

// Calls `step` with the modal dialog of class `className` when it is the active one, again and
// again until it returns true.
void whenOpen(const char *className, const std::function<bool(QWidget *dialog)> &step);

// Presses OK (1) or Cancel (0) of the next MessageBox; its text goes to `text`.
void answerNextBox(int result, QString *text = nullptr);

// Presses keys of the SoftKeyboard, page switches and Shift included. "\n" is Enter, "\b" delete,
// "\x1b" the close key, "\a" the eye. A press that the keyboard's debounce drops is repeated.
void typeOnKeyboard(const QString &keys);

// Whether everything asked for is done.
bool dialogsDone();

// How often the key click has sounded.
int keyClicks();
