#include "app/PageStack.h"

#include "app/look/Spacing.h"
#include "app/look/WidgetLook.h"

#include <QVBoxLayout>

void PageTab::showEvent(QShowEvent *event)
{
    if (m_page != nullptr) {
        QWidget *page = m_page.release();
        auto *room = new QVBoxLayout(this);
        room->setContentsMargins(0, 0, 0, 0);
        room->addWidget(page);
        applyPendingStyles(page); // a page with a sheet would be styled again when it joins
        growLayouts(this);
        page->show();
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
