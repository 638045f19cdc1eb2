// Whether a text stands out from its ground.
#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

namespace control {

// Contrast ratio of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio").
double contrast(const QColor &one, const QColor &other);

// The commonest colour in `area` of the picture other than `letters`; that if there is no other.
QColor groundColor(const QImage &picture, const QRect &area, const QColor &letters);

} // namespace control
