#include "platform/board.h"
#include "platform/control/UiWidgets.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QSaveFile>

#include <algorithm>
#include <utility>

namespace control {
namespace {

constexpr int FULL = 100; // percent

std::function<int()> &brightness()
{
    static auto &ask = *new std::function<int()>([] { return FULL; });
    return ask;
}

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

// The shade over the picture at that brightness. At 1 percent black on white keeps a contrast
// of 4.7 to 1, which can be read.
QColor shade(int percent)
{
    constexpr int darkest = 138; // of 255
    return {0, 0, 0, darkest * (100 - percent) / 100};
}

} // namespace

QSize panelScreen()
{
    int width = 0;
    int height = 0;
    int depth = 0;
    if (PLATFORM::CPlatLcd::getResolution(width, height, depth) < 0)
        return mainWindow()->size();
    return {width, height};
}

void dimPictures(std::function<int()> ask)
{
    brightness() = std::move(ask);
}

void shootScreen(const QString &path)
{
    QPixmap screen(panelScreen());
    screen.fill(Qt::black);
    QPainter painter(&screen);
    for (QWidget *window : shownWindows())
        painter.drawPixmap(screenRect(window).topLeft(), window->grab());
    painter.fillRect(screen.rect(), shade(brightness()()));
    painter.end();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !screen.save(&file, "PNG") || !file.commit())
        throw BadRequest("cannot write " + path.toStdString() + ": " +
                         file.errorString().toStdString());
}

} // namespace control
