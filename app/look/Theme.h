// The colours of the program by their roles, in one place. Any thread.
#pragma once

#include <QColor>
#include <QString>

// Fills the names of a style sheet template, such as "color:@ink;", with their colours. The names
// and what each is for stand in Theme.cpp. An unknown name stays, and Qt warns of it.
QString themed(const QString &sheetTemplate);

// The same colour for what is painted; also of a value as style sheets have it. Invalid for what is
// neither. `alpha`: 0 to 255, opaque.
QColor themeColour(const QString &name, int alpha = 255);
