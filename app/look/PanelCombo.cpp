#include "app/look/PanelCombo.h"

#include "app/look/FingerScroll.h"
#include "app/look/Screen.h"

#include <QAbstractItemView>
#include <QMouseEvent>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

void PanelCombo::showPopup()
{
    if (!std::exchange(m_hasList, true)) {
        // The list's own delegate ignores the row height of the style sheet.
        setItemDelegate(new QStyledItemDelegate(this));
        view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        new FingerScroll(view());
    }
    QComboBox::showPopup();
    QWidget *list = view()->window();
    const int frame = list->height() - view()->viewport()->height();
    const int rows = std::min(count(), maxVisibleItems()) * view()->sizeHintForRow(0);
    placeOverPage(list, {width(), std::min(rows + frame, screenSize().height())}, this,
                  {0, height()});
    view()->scrollTo(view()->currentIndex(), QAbstractItemView::PositionAtCenter);
}

void PanelCombo::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    m_isPressed = true;
}

void PanelCombo::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    if (std::exchange(m_isPressed, false) && rect().contains(event->pos()))
        showPopup();
}
