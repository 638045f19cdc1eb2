#include "app/look/FingerScroll.h"

#include "app/look/Screen.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QScrollBar>

#include <cstdlib>
#include <utility>

FingerScroll::FingerScroll(QAbstractScrollArea *area)
    : QObject(area), m_pArea(area), m_pView(qobject_cast<QAbstractItemView *>(area))
{
    if (m_pView != nullptr) {
        m_pView->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        m_pView->setAutoScroll(false); // it would bring the chosen row back into sight
    }
    area->viewport()->installEventFilter(this);
}

bool FingerScroll::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // the second of two quick touches
        press(*static_cast<QMouseEvent *>(event));
        return false;
    case QEvent::MouseMove:
        return move(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return release();
    default:
        return QObject::eventFilter(watched, event);
    }
}

void FingerScroll::press(const QMouseEvent &event)
{
    m_touch = Touch::Rests;
    m_nFrom = event.globalPos().y();
    if (m_pView != nullptr)
        m_current = m_pView->currentIndex();
}

bool FingerScroll::move(const QMouseEvent &event)
{
    const int way = event.globalPos().y() - m_nFrom;
    const int rest = touchHeight() / 4; // a gloved finger rolls as it touches
    QScrollBar *bar = m_pArea->verticalScrollBar();
    if (m_touch == Touch::Rests && std::abs(way) > rest) {
        letGo();
        m_touch = Touch::Slides;
        m_nFrom += way > 0 ? rest : -rest;
        m_nValue = bar->value();
    }
    if (m_touch == Touch::Slides)
        bar->setSliderPosition(m_nValue + m_nFrom - event.globalPos().y()); // as its handle would
    return m_touch != Touch::None;
}

bool FingerScroll::release()
{
    return std::exchange(m_touch, Touch::None) == Touch::Slides;
}

// Ends the click that the view has begun, by a release outside all rows.
void FingerScroll::letGo()
{
    if (m_pView == nullptr)
        return;
    const QPoint away(-QWIDGETSIZE_MAX, -QWIDGETSIZE_MAX);
    QMouseEvent up(QEvent::MouseButtonRelease, away, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_pView->viewport(), &up);
    m_pView->setCurrentIndex(m_current);
}
