#include "system/ElidedLine.h"

#include <QEvent>

namespace {

constexpr int LINE_MARGIN = 2; // pixels that a line edit keeps free at either side of its text

} // namespace

void ElidedLine::setFullText(const QString &text)
{
    m_text = text;
    fit();
}

bool ElidedLine::event(QEvent *event)
{
    const bool handled = QLineEdit::event(event);
    if (event->type() == QEvent::Show || event->type() == QEvent::Resize ||
        event->type() == QEvent::FontChange)
        fit();
    return handled;
}

void ElidedLine::fit()
{
    const int room = contentsRect().width() - 2 * LINE_MARGIN;
    setText(isVisible() ? fontMetrics().elidedText(m_text, Qt::ElideRight, room) : m_text);
}
