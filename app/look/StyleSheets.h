// The one place of all style sheet templates, filled with the font of the screen and language.
// GUI thread.
#pragma once

#include <QString>

// The main window's own, which every page inherits.
QString windowStyle();
// A tab widget's: tabs of a fifth of the screen's width and a twelfth of its height.
QString tabStyle();
// The width of one tab, its line at the right included, in pixels.
int tabWidth();
// The update group's, behind its tab style: progress bars and file lists.
QString updateStyle();
// Scroll bars that a finger can take hold of: an update page's, behind its group's.
QString scrollStyle();
// The line under an update page's list.
QString updateLabelStyle();
// A navigation button's.
QString navigationStyle(bool selected);
// An on/off switch's.
QString switchStyle(bool on);
// An image, "name.png", on a label: scaled down to fit, or stretched to fill.
QString iconStyle(const QString &imageName);
QString borderImageStyle(const QString &imageName);
// Text in a colour of Theme.
QString textColourStyle(const QString &colourName);
QString messageBoxStyle();
// The keyboard's: its entry line aligned left, or centred for numbers.
QString keyboardStyle(bool centred);
// The close key's of a keyboard that nobody may close.
QString closeKeyStyle();
// The device information page's: lines between its rows, a card around the code.
QString infoStyle();
// The version page's: a list of two columns, lines between its rows.
QString versionStyle();
// The language page's: radio buttons with indicators of 20 by 20 pixels, and the button with the
// dynamic property "chosen" beside the one that is checked.
QString radioStyle();
// Radio buttons whose indicators follow the screen, 20 by 20 pixels at least.
QString growingRadioStyle();
// A block of address fields: underlined while they can be edited, bare while they only show.
QString addressStyle(bool underlined);
// The Wi-Fi page's, behind the window's list style.
QString wifiStyle();
// The Wi-Fi parameters dialog's, behind its block of address fields.
QString wifiParaStyle();
QString comStyle();
// The 4G page's: fields as on the COM page, and radio buttons.
QString cellularStyle();
// The communication dialog's, its fields as on the COM page.
QString communicationStyle();
// The General page's: underlined fields, the list of zones with rows as high as a touch, and
// sliders that follow the screen.
QString generalStyle();
// The extended network page's: a list whose arrow is one and a half times as wide as the font is
// high, with rows as high as a touch.
QString extendStyle();
// The network diagnosis's: rows in a list, headings shaded, advice set off.
QString diagnosisStyle();
