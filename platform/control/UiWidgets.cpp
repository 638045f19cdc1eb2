#include "platform/control/UiWidgets.h"

#include <QApplication>

#include <algorithm>

namespace control {
namespace {

// Of candidates for the main window: the area, or -1 where hidden or a pop-up.
int importance(const QWidget *widget)
{
    const int area = widget->width() * widget->height();
    return widget->isVisible() && widget->windowType() != Qt::Popup ? area : -1;
}

bool isBlocked(const QWidget *widget)
{
    const QWidget *modal = QApplication::activeModalWidget();
    const QWidget *window = widget->window();
    return modal != nullptr && window != modal && !modal->isAncestorOf(widget) &&
           window->windowType() != Qt::Popup;
}

} // namespace

QVector<QWidget *> rootWidgets()
{
    QVector<QWidget *> roots;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->parentWidget() == nullptr)
            roots.append(window);
    std::stable_sort(roots.begin(), roots.end(), [](const QWidget *a, const QWidget *b) {
        return importance(a) > importance(b);
    });
    return roots;
}

QWidget *mainWindow()
{
    const QVector<QWidget *> roots = rootWidgets();
    if (roots.isEmpty())
        throw BadRequest("there is no window");
    return roots.front();
}

QVector<QWidget *> widgetsNamed(const QString &name)
{
    QVector<QWidget *> widgets;
    for (QWidget *root : rootWidgets()) {
        if (root->objectName() == name)
            widgets.append(root);
        for (QWidget *widget : root->findChildren<QWidget *>())
            if (widget->objectName() == name)
                widgets.append(widget);
    }
    return widgets;
}

QString obstacle(const QWidget *widget)
{
    if (!widget->isVisible())
        return QStringLiteral("is not visible");
    if (!widget->isEnabled())
        return QStringLiteral("is disabled");
    return isBlocked(widget) ? QStringLiteral("is behind a modal dialog") : QString();
}

QRect screenRect(const QWidget *widget)
{
    const QPoint origin = mainWindow()->mapToGlobal(QPoint());
    return {widget->mapToGlobal(QPoint()) - origin, widget->size()};
}

} // namespace control
