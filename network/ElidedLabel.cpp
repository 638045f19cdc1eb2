#include "network/ElidedLabel.h"

#include <QEvent>
#include <QPainter>

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    const QRect room = contentsRect();
    if (text() != m_text || room.width() != m_nWidth)
        layOut();
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    // The size counts a gap to a next line, which there is not.
    const qreal height = m_line.size().height() - QFontMetricsF(font()).leading();
    painter.drawStaticText(QPointF(room.left(), room.top() + (room.height() - height) / 2), m_line);
}

void ElidedLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_nWidth = 0;
}

void ElidedLabel::layOut()
{
    m_text = text();
    m_nWidth = contentsRect().width();
    m_line.setTextFormat(Qt::PlainText);
    m_line.setText(fontMetrics().elidedText(m_text, Qt::ElideRight, m_nWidth));
    m_line.prepare(QTransform(), font());
}
