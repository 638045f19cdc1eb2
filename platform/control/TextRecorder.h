// The texts that a widget paints, as it paints them.
#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <QVector>
#include <QWidget>

namespace control {

// One run of text of one font.
struct PaintedText
{
    QString text;
    QFont font;
    QColor color;
    QRectF ink; // what its letters cover, in the widget's coordinates
};

// The texts that `widget` paints now, without its children, in the order of painting and as they
// are shown, elided ones with the dots. GUI thread.
QVector<PaintedText> paintedTexts(QWidget *widget);

} // namespace control
