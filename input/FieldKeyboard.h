// The one way to open the keyboard on a field, and the gate before the settings. GUI thread.
#pragma once

#include "input/SoftKeyboard.h"

class QLineEdit;

// What the fractions of a keyboard's size are taken of.
enum class KeyboardSizeOf { Screen, Page };

// An edit of one field of `page`. Size and place are the usual ones unless changed.
struct KeyboardRequest
{
    QWidget *page = nullptr;    // never null
    QLineEdit *field = nullptr; // gets the entry; null starts empty and leaves it to the caller
    QString caption;            // what is edited, in the keyboard's title strip
    int mode = KB_MODE_TEXT;
    int min = 0; // in number mode
    int max = 0;
    int maxLength = 0; // in the text modes

    KeyboardSizeOf sizeOf = KeyboardSizeOf::Screen;
    double widthFactor = 0.55;
    double heightFactor = 0.7;
    double xFactor = 0.2; // of the page's size, from the page's corner
    double yFactor = 0.15;
};

// What a form calls a field: the text of the label whose buddy it is, without the colon.
QString captionOf(const QLineEdit *field);

// With the form's caption of the field, if it has one.
KeyboardRequest numberRequest(QWidget *page, QLineEdit *field, int min, int max);
// `mode` is KB_MODE_TEXT or KB_MODE_HIDDEN_TEXT.
KeyboardRequest textRequest(QWidget *page, QLineEdit *field, int mode, int maxLength);

// Sounds the key click and runs a keyboard on the field, kept wholly on the screen. Meanwhile the
// field has the dynamic property "edited" for style sheets, since the keyboard may cover its label.
// A valid entry is in the field already when this returns. Returns whether a new value was entered
// (always false in text mode, see SoftKeyboard::getText), and then gives the text as typed in
// `entered`.
bool editWithKeyboard(const KeyboardRequest &request, QString *entered = nullptr);

// Holds `window` shut until the password is typed.
void runPasswordGate(QWidget *window, const QString &password);
