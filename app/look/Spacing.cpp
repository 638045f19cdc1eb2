#include "app/look/Spacing.h"

#include "app/look/Screen.h"

#include <QGridLayout>
#include <QVariant>
#include <QWidget>

#include <algorithm>

namespace {

constexpr int DRAWN_HEIGHT = 272; // pixels, of the forms' screen
constexpr int UNIT = 4;
constexpr int FRAME = 2;               // pixels that a layout leaves free for a line around it
constexpr const char *GROWN = "grown"; // property of a layout that is done

int grown(int pixels)
{
    if (pixels <= FRAME)
        return pixels;
    return pixels * std::max(DRAWN_HEIGHT, screenSize().height()) / DRAWN_HEIGHT;
}

void growSpacing(QLayout *layout)
{
    if (auto *grid = qobject_cast<QGridLayout *>(layout)) {
        grid->setHorizontalSpacing(grown(grid->horizontalSpacing()));
        grid->setVerticalSpacing(grown(grid->verticalSpacing()));
    } else if (layout->spacing() > 0) {
        layout->setSpacing(grown(layout->spacing()));
    }
}

void growGaps(QLayout *layout)
{
    for (int i = 0; i < layout->count(); ++i) {
        QSpacerItem *gap = layout->itemAt(i)->spacerItem();
        if (gap == nullptr || gap->sizePolicy().horizontalPolicy() != QSizePolicy::Fixed)
            continue;
        const QSize size = gap->sizeHint();
        gap->changeSize(grown(size.width()), size.height(), QSizePolicy::Fixed,
                        gap->sizePolicy().verticalPolicy());
    }
}

void growLayout(QLayout *layout)
{
    if (layout->property(GROWN).isValid())
        return;
    layout->setProperty(GROWN, true);
    const QMargins margins = layout->contentsMargins();
    layout->setContentsMargins(grown(margins.left()), grown(margins.top()), grown(margins.right()),
                               grown(margins.bottom()));
    growSpacing(layout);
    growGaps(layout);
}

} // namespace

int spacing(int units)
{
    return grown(units * UNIT);
}

void growLayouts(QWidget *page)
{
    for (QLayout *layout : page->findChildren<QLayout *>())
        growLayout(layout);
}
