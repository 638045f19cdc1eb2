// The texts that a widget paints, as it paints them.
#pragma once

#include <QColor>
#include <QFont>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QRectF>
#include <QString>
#include <QVector>
#include <QWidget>

#include <memory>

namespace sim {

// One run of text of one font.
struct PaintedText
{
    QString text;
    QFont font;
    QColor color;
    QRectF ink; // what its letters cover, in the widget's coordinates
};

// What `widget` alone, without its children, paints as text now, in its order. Whatever kind of
// widget it is: elided texts come as they are shown. GUI thread.
QVector<PaintedText> paintedTexts(QWidget *widget);

} // namespace sim
