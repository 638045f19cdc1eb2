#include "app/PageStack.h"

#include "app/look/Spacing.h"
#include "app/look/WidgetLook.h"

#include <QVBoxLayout>

void PageTab::showEvent(QShowEvent *event)
{
    if (m_page != nullptr) {
        applyPendingStyles(m_page.get());
        auto *room = new QVBoxLayout(this);
        room->setContentsMargins(0, 0, 0, 0);
        room->addWidget(m_page.release());
        growLayouts(this);
        room->itemAt(0)->widget()->show();
        room->activate();
    }
    QWidget::showEvent(event);
}

void PageTab::parkPage()
{
    if (layout() == nullptr || isVisible())
        return;
    m_page.reset(layout()->itemAt(0)->widget());
    delete layout();
    m_page->setParent(nullptr);
}
