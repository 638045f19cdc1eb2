#include "platform/sim/Panel.h"
#include "platform/sim/UiWidgets.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QSaveFile>

#include <algorithm>

namespace sim {
namespace {

// Position above the main window: dialogs by the number of their parent windows, pop-ups on top.
int stackingOrder(const QWidget *window)
{
    int depth = window->windowType() == Qt::Popup ? 1000 : 0;
    for (const QWidget *parent = window->parentWidget(); parent; parent = parent->parentWidget())
        depth += parent->isWindow() ? 1 : 0;
    return depth;
}

QVector<QWidget *> shownWindows()
{
    QVector<QWidget *> windows;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->windowType() != Qt::ToolTip)
            windows.append(window);
    const QWidget *main = mainWindow();
    const auto order = [main](const QWidget *window) {
        return window == main ? -1 : stackingOrder(window);
    };
    std::stable_sort(windows.begin(), windows.end(),
                     [&](const QWidget *a, const QWidget *b) { return order(a) < order(b); });
    return windows;
}

QSize screenSize()
{
    const Json lcd = panel().get("lcd");
    return {lcd["width"].get<int>(), lcd["height"].get<int>()};
}

// The shade over the picture at that brightness. At 1 percent black on white keeps a contrast
// of 4.7 to 1, which can be read.
QColor shade(int percent)
{
    constexpr int darkest = 138; // of 255
    return {0, 0, 0, darkest * (100 - percent) / 100};
}

} // namespace

void shootScreen(const QString &path)
{
    QPixmap screen(screenSize());
    screen.fill(Qt::black);
    QPainter painter(&screen);
    for (QWidget *window : shownWindows())
        painter.drawPixmap(screenRect(window).topLeft(), window->grab());
    painter.fillRect(screen.rect(), shade(panel().get("lcd.brightness").get<int>()));
    painter.end();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !screen.save(&file, "PNG") || !file.commit())
        throw BadRequest("cannot write " + path.toStdString() + ": " +
                         file.errorString().toStdString());
}

} // namespace sim
