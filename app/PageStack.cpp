#include "app/PageStack.h"

#include <QVBoxLayout>

void PageTab::showEvent(QShowEvent *event)
{
    if (m_page != nullptr) {
        auto *room = new QVBoxLayout(this);
        room->setContentsMargins(0, 0, 0, 0);
        room->addWidget(m_page.release());
        room->activate();
    }
    QWidget::showEvent(event);
}
