#include "platform/control/Contrast.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace control {
namespace {

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

} // namespace

double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor groundColor(const QImage &picture, const QRect &area, const QColor &letters)
{
    QHash<QRgb, int> counts;
    const QRect seen = area & picture.rect();
    for (int y = seen.top(); y <= seen.bottom(); ++y)
        for (int x = seen.left(); x <= seen.right(); ++x)
            ++counts[picture.pixel(x, y)];
    counts.remove(letters.rgb());
    const auto most = std::max_element(counts.cbegin(), counts.cend());
    return most == counts.cend() ? letters : QColor(most.key());
}

} // namespace control
