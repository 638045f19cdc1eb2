// The font rule, and the language globals that it reads. GUI thread.
#pragma once

#include <QString>

class QFont;
class QTranslator;

// The language of the program: 0 Simplified Chinese, 1 English.
extern int g_nLanguge;
// The allow-change setting as it was read at start-up; 0 where there is none.
extern int g_nChange;
// Whether the operator may change the language.
extern bool g_bChange;
// The one translator of the program; null until the first language is applied.
extern QTranslator *m_translator;

// The font fragment of every style sheet, such as "font: 75 20px simsun;": by the width of the
// screen and the language. The Latin font is 2 px smaller than the Chinese one on the two small
// screen classes and equal on the two large ones; this is intended.
QString GetFontStyle();

// Size of that font in pixels.
int fontPixelSize();

// The width of a column of captions before fields, in pixels: five and a half Chinese letters.
int captionWidth();

// Names the fonts that stand in for simsun and Calibri on a system that has neither them nor our
// fontconfig file, resources/fonts/60-sysset.conf.
void substituteFonts();

// The font of widgets without a style sheet yet. The program uses it in any case, so the system's
// own font is never loaded.
QFont panelFont();
