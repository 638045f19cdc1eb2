#include "app/look/WrapLabel.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr int LEAST_PADDING = 6; // pixels to the left and right of the text
constexpr int LEAD = 2;          // above and below

int paddingOf(const QLabel &label)
{
    return std::max(LEAST_PADDING, label.font().pixelSize() / 3);
}

// Breaks the label's text into lines of `width`. Returns their height.
int layLines(QTextLayout &layout, int width)
{
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, height});
        height += line.height();
    }
    layout.endLayout();
    return static_cast<int>(std::ceil(height));
}

void prepare(QTextLayout &layout, const QLabel &label)
{
    QString text = label.text();
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\n'), QChar::LineSeparator);
    layout.setText(text);
    layout.setFont(label.font());
    QTextOption option(label.alignment() & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.setCacheEnabled(true);
}

// How many lines fit into `height`; one at least.
int linesWithin(const QTextLayout &layout, int height)
{
    int count = 1;
    while (count < layout.lineCount() && layout.lineAt(count).rect().bottom() <= height)
        ++count;
    return count;
}

} // namespace

WrapLabel::WrapLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void WrapLabel::setLeastLines(int lines)
{
    m_nLeastLines = lines;
    updateGeometry();
}

int WrapLabel::heightForWidth(int width) const
{
    const QSize frame = size() - contentsRect().size();
    QTextLayout layout;
    prepare(layout, *this);
    const int text = layLines(layout, std::max(1, width - frame.width() - 2 * paddingOf(*this)));
    return std::max(text + 2 * LEAD, sizeHint().height()) + frame.height();
}

QSize WrapLabel::sizeHint() const
{
    return {0, m_nLeastLines * fontMetrics().lineSpacing() + 2 * LEAD};
}

QSize WrapLabel::minimumSizeHint() const
{
    return {0, fontMetrics().lineSpacing() + 2 * LEAD};
}

void WrapLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawFrame(&painter);
    const int padding = paddingOf(*this);
    const QRect room = contentsRect().adjusted(padding, LEAD, -padding, -LEAD);
    QTextLayout layout;
    prepare(layout, *this);
    const int height = layLines(layout, std::max(1, room.width()));
    const int count = linesWithin(layout, room.height());
    const bool whole = count == layout.lineCount();

    painter.setPen(palette().color(foregroundRole()));
    const qreal above =
        whole && (alignment() & Qt::AlignVCenter) ? (room.height() - height) / 2.0 : 0;
    const QPointF corner(room.left(), room.top() + std::max(0.0, above));
    for (int i = 0; i < count - (whole ? 0 : 1); ++i)
        layout.lineAt(i).draw(&painter, corner);
    if (whole)
        return;
    const QTextLine last = layout.lineAt(count - 1);
    const QString rest =
        layout.text().mid(last.textStart()).replace(QChar::LineSeparator, QLatin1Char(' '));
    painter.drawText(QRectF(corner + last.position(), QSizeF(room.width(), last.height())),
                     static_cast<int>(layout.textOption().alignment()),
                     fontMetrics().elidedText(rest, Qt::ElideRight, room.width()));
}
