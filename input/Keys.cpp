#include "input/Keys.h"

#include <QEvent>
#include <QPixmapCache>
#include <QStyleOptionButton>
#include <QStylePainter>

#include <utility>

KeyButton::KeyButton(QWidget *parent) : QPushButton(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    setFocusPolicy(Qt::NoFocus);
    setAutoDefault(false);
}

void KeyButton::polish()
{
    QEvent event(QEvent::Polish);
    QPushButton::event(&event);
}

bool KeyButton::isOnPage() const
{
    return dynamic_cast<KeyPage *>(parentWidget()) != nullptr;
}

bool KeyButton::event(QEvent *event)
{
    // Showing the keyboard polishes the keys of hidden pages too, two of three keys.
    if (event->type() == QEvent::Polish && isOnPage())
        return true;
    if (event->type() != QEvent::StyleChange)
        return QPushButton::event(event);
    // A push button works out its margins anew here; a key has none.
    changeEvent(event);
    return true;
}

// As QPushButton, but for the ground.
void KeyButton::paintEvent(QPaintEvent *event)
{
    if (!isOnPage())
        return QPushButton::paintEvent(event);
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawPixmap(0, 0, ground(option));
    option.rect = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
    painter.drawControl(QStyle::CE_PushButtonLabel, option);
}

// Keys of one size and state have the same ground. Drawing its rounded border costs more than
// drawing the letter.
QPixmap KeyButton::ground(const QStyleOptionButton &option) const
{
    const QString name = QStringLiteral("key ground %1 %2 %3")
                             .arg(width())
                             .arg(height())
                             .arg(static_cast<int>(option.state), 0, 16);
    QPixmap picture;
    if (QPixmapCache::find(name, &picture))
        return picture;
    picture = QPixmap(size());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, this);
    painter.end();
    QPixmapCache::insert(name, picture);
    return picture;
}

// A stack shows its first page at once, and whatever is polished then is polished again when the
// keyboard gets its window flags and its style. The page is not hidden, so it appears with the
// stack.
void KeyPage::setVisible(bool visible)
{
    const bool comesWithStack = !isHidden() && !parentWidget()->isVisible();
    if (!visible || !comesWithStack)
        QWidget::setVisible(visible);
}

void KeyPage::showEvent(QShowEvent *event)
{
    if (!std::exchange(m_bPolished, true)) {
        for (QObject *child : children()) {
            if (auto *key = dynamic_cast<KeyButton *>(child))
                key->polish();
        }
    }
    QWidget::showEvent(event);
}
