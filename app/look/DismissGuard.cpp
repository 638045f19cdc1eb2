#include "app/look/DismissGuard.h"

#include <QKeyEvent>
#include <QWidget>

DismissGuard::DismissGuard(QWidget *window, bool alsoClose)
    : QObject(window), m_bAlsoClose(alsoClose)
{
    window->installEventFilter(this);
}

bool DismissGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::Cancel)) {
        return true;
    }
    if (event->type() == QEvent::Close && m_bAlsoClose) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
