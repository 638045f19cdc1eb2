#include "system/Stepping.h"

#include <algorithm>

namespace {

// Wide enough for any number and any step.
long long stepped(const QString &text, int step)
{
    return static_cast<long long>(text.toInt()) + step;
}

} // namespace

QString steppedItem(const QStringList &list, const QString &item, int step)
{
    if (list.isEmpty())
        return item;
    const int index = list.indexOf(item) + step;
    if (index < 0)
        return list.last();
    return index < list.size() ? list.at(index) : list.first();
}

QString steppedAround(const QString &text, int step, int min, int max)
{
    const long long value = stepped(text, step);
    if (value < min)
        return QString::number(max);
    return QString::number(value > max ? min : value);
}

QString steppedWithin(const QString &text, int step, int min, int max)
{
    return QString::number(std::clamp<long long>(stepped(text, step), min, max));
}
