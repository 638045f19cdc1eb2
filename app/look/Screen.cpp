#include "app/look/Screen.h"

#include "platform/board.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>

namespace {

constexpr int LEAST_TOUCH = 32; // pixels

// The main window is the root of every dialog's chain of parents, but for a dialog of a page that
// is not in the window (PageTab).
const QWidget *rootOf(const QWidget *widget)
{
    const QWidget *root = widget;
    while (root->parentWidget() != nullptr)
        root = root->parentWidget();
    if (root == widget || root->isVisible())
        return root;
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->parentWidget() == nullptr)
            return window;
    }
    return root;
}

QPoint screenOrigin(const QWidget *widget)
{
    const QWidget *root = rootOf(widget);
    return root == widget ? QPoint(0, 0) : root->mapToGlobal(QPoint(0, 0));
}

} // namespace

QSize screenSize()
{
    static QSize known(800, 480);
    int width = 0;
    int height = 0;
    int depth = 0;
    if (PLATFORM::CPlatLcd::getResolution(width, height, depth) >= 0 && width > 0 && height > 0)
        known = {width, height};
    return known;
}

int touchHeight()
{
    return std::max(LEAST_TOUCH, screenSize().height() / 12);
}

QSize fractionOf(const QSize &size, double widthFactor, double heightFactor)
{
    return {static_cast<int>(size.width() * widthFactor),
            static_cast<int>(size.height() * heightFactor)};
}

void placeOnScreen(QWidget *window, const QSize &size, const QPoint &corner)
{
    window->setFixedSize(size);
    window->move(screenOrigin(window) + corner);
}

void placeOverPage(QWidget *window, const QSize &size, const QWidget *page, const QPoint &offset)
{
    const QPoint wanted = page->mapToGlobal(QPoint(0, 0)) - screenOrigin(window) + offset;
    const QSize room = screenSize() - size;
    placeOnScreen(window, size,
                  {std::clamp(wanted.x(), 0, std::max(0, room.width())),
                   std::clamp(wanted.y(), 0, std::max(0, room.height()))});
}
