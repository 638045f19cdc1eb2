// What a pair of step buttons does with the text beside it.
#pragma once

#include <QString>
#include <QStringList>

// The item `step` (-1 or 1) behind `item`, past either end the one at the other end. A text that
// the list does not have leads to the last item (-1) or the first (1). In an empty list the text
// stays.
QString steppedItem(const QStringList &list, const QString &item, int step);

// The number in `text` (0 if it is none) plus `step`: below `min` it becomes `max`, above `max`
// it becomes `min`.
QString steppedAround(const QString &text, int step, int min, int max);

// The same, but it stays at `min` or `max`.
QString steppedWithin(const QString &text, int step, int min, int max);
