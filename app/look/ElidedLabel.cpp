#include "app/look/ElidedLabel.h"

#include "app/look/Theme.h"

#include <QEvent>
#include <QPainter>

namespace {

void drawChip(QPainter *painter, const QRectF &text)
{
    const qreal round = text.height() / 2;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(themeColour(QStringLiteral("chip")));
    painter->drawRoundedRect(text.adjusted(-round, -round / 5, round, round / 5), round, round);
}

} // namespace

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void ElidedLabel::setChip(bool on)
{
    m_bChip = on;
    setPadded(on);
}

void ElidedLabel::setPadded(bool on)
{
    m_bPadded = on;
    update();
}

QRect ElidedLabel::room() const
{
    const int padding = m_bPadded ? fontMetrics().height() / 2 : 0;
    return contentsRect().adjusted(padding, 0, -padding, 0);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    const QRect room = this->room();
    if (text() != m_text || room.width() != m_nWidth)
        layOut();
    QPainter painter(this);
    // The size counts the leading below the line too.
    const qreal height = m_line.size().height() - QFontMetricsF(font()).leading();
    const QPointF corner(room.left(), room.top() + (room.height() - height) / 2);
    if (m_bChip)
        drawChip(&painter, QRectF(corner, QSizeF(m_line.size().width(), height)));
    painter.setPen(palette().color(foregroundRole()));
    painter.drawStaticText(corner, m_line);
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
    m_nWidth = room().width();
    m_line.setTextFormat(Qt::PlainText);
    m_line.setText(fontMetrics().elidedText(m_text, Qt::ElideRight, m_nWidth));
    m_line.prepare(QTransform(), font());
}
