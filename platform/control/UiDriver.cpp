#include "platform/control/UiDriver.h"

#include "platform/control/UiFit.h"
#include "platform/control/UiWidgets.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>

namespace control {
namespace {

using Args = std::vector<std::string>;

constexpr int QUIT_REPEAT_MS = 50;

// Those that `isFirst` holds for come first.
template <typename Predicate>
QVector<QWidget *> namedWith(const std::string &name, Predicate isFirst)
{
    QVector<QWidget *> widgets = widgetsNamed(QString::fromStdString(name));
    std::stable_partition(widgets.begin(), widgets.end(), isFirst);
    return widgets;
}

QWidget *pressable(const std::string &name, int index)
{
    const auto widgets = namedWith(name, [](const QWidget *w) { return obstacle(w).isEmpty(); });
    if (index < 0 || index >= widgets.size())
        throw BadRequest(widgets.isEmpty() ? "there is no " + name
                                           : "there is no " + name + " " + std::to_string(index));
    const QString reason = obstacle(widgets[index]);
    if (!reason.isEmpty())
        throw BadRequest(name + " " + reason.toStdString());
    return widgets[index];
}

Json dumpTree()
{
    Json tree = dumpWidget(mainWindow());
    for (const QWidget *root : rootWidgets())
        if (root != mainWindow() && root->isVisible())
            tree["children"].push_back(dumpWidget(root));
    return tree;
}

Json dumpNamed(const std::string &name)
{
    Json list = Json::array();
    for (const QWidget *widget : namedWith(name, [](const QWidget *w) { return w->isVisible(); }))
        list.push_back(dumpWidget(widget));
    return list;
}

Json dump(const Args &args)
{
    return args.empty() ? dumpTree() : dumpNamed(args[0]);
}

// The widget that is meant by an object's name and the index behind it, and the row of it.
struct Target
{
    QWidget *widget;
    int row;
};

Target target(const Args &args)
{
    const int index = args.size() > 1 ? parseNumber(args[1], "INDEX") : -1;
    if (args.size() > 1 && index < 0)
        throw BadRequest("INDEX must be 0 or more");
    QWidget *first = pressable(args[0], 0);
    return {hasRows(first) || index < 0 ? first : pressable(args[0], index), index};
}

Json press(const Args &args)
{
    const Target pressed = target(args);
    pressWidget(pressed.widget, pressed.row);
    return nullptr;
}

Json where(const Args &args)
{
    const Target touched = target(args);
    const QPoint point = pressPoint(touched.widget, touched.row);
    return {point.x(), point.y()};
}

Json way(const Args &args)
{
    const QWidget *slider = pressable(args[0], 0);
    const QLine path =
        slidePath(slider, parseNumber(args[1], "VALUE")).translated(screenRect(slider).topLeft());
    return {{path.x1(), path.y1()}, {path.x2(), path.y2()}};
}

Json slide(const Args &args)
{
    dragSlider(pressable(args[0], 0), parseNumber(args[1], "VALUE"));
    return nullptr;
}

Json shot(const Args &args)
{
    shootScreen(QString::fromStdString(args[0]));
    return nullptr;
}

Json fit(const Args &)
{
    return fitFindings();
}

struct Action
{
    const char *name;
    std::size_t least;
    std::size_t most;
    Json (*run)(const Args &args);
};

constexpr Action ACTIONS[] = {
    {"dump", 0, 1, dump}, {"press", 1, 2, press}, {"slide", 2, 2, slide}, {"where", 1, 2, where},
    {"way", 2, 2, way},   {"shot", 1, 1, shot},   {"fit", 0, 0, fit}};

} // namespace

// QCoreApplication::quit() ends the event loops that run now; one that a dialog starts later needs
// another call.
void endProgram()
{
    auto *timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, &QCoreApplication::quit);
    timer->start(QUIT_REPEAT_MS);
}

bool isUiRequest(const Request &request)
{
    return request.verb == "ui" || request.verb == "quit";
}

Json runUiRequest(const Request &request)
{
    if (request.verb == "quit") {
        if (!request.args.empty())
            throw BadRequest("quit: wrong number of arguments");
        endProgram();
        return nullptr;
    }
    for (const Action &action : ACTIONS) {
        if (request.args.empty() || request.args[0] != action.name)
            continue;
        const Args args(request.args.begin() + 1, request.args.end());
        if (args.size() < action.least || args.size() > action.most)
            throw BadRequest("ui " + request.args[0] + ": wrong number of arguments");
        return action.run(args);
    }
    throw BadRequest("ui dump, ui press, ui slide, ui where, ui way, ui shot or ui fit");
}

} // namespace control
