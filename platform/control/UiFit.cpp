#include "platform/control/UiFit.h"

#include "platform/control/Contrast.h"
#include "platform/control/TextRecorder.h"
#include "platform/control/UiWidgets.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSlider>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>

#include <algorithm>

namespace control {
namespace {

constexpr double LEAST_CONTRAST = 4.5;          // WCAG 2.1, 1.4.3
constexpr double LEAST_DISABLED_CONTRAST = 3.0; // 1.4.11, which does not ask it of disabled texts
constexpr int SMALL_SCREEN_LINES = 480;
constexpr int SMALL_SCREEN_TOUCH = 32;
constexpr int LEAST_TOUCH = 40;
constexpr int MARGIN = 3; // pixels around a text that show its ground
constexpr QChar ELLIPSIS(0x2026);

// The findings, each with a name by which a person finds the widget.
class Findings
{
public:
    void add(const char *kind, const QWidget *widget, const QString &detail)
    {
        m_list.push_back({{"kind", kind},
                          {"widget", nameOf(widget).toStdString()},
                          {"detail", detail.toStdString()}});
    }
    const Json &list() const { return m_list; }

private:
    static QString nameOf(const QWidget *widget)
    {
        const QWidget *named = widget;
        while (named->objectName().isEmpty() && named->parentWidget() != nullptr)
            named = named->parentWidget();
        const QString name = named->objectName();
        return named == widget ? name
                               : QLatin1String(widget->metaObject()->className()) +
                                     QLatin1String(" in ") + name;
    }

    Json m_list = Json::array();
};

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString asText(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

// The viewport of a view: it scrolls.
bool isViewport(const QWidget *widget)
{
    const auto *area = qobject_cast<const QAbstractScrollArea *>(widget->parentWidget());
    return area != nullptr && area->viewport() == widget;
}

bool isInside(const QWidget *widget, const QRectF &ink)
{
    const QRectF room = QRectF(widget->rect()).adjusted(-1, -1, 1, 1); // smoothed edges
    if (isViewport(widget))
        return ink.left() >= room.left() && ink.right() <= room.right();
    return room.contains(ink);
}

void lookForCuts(Findings &findings, const QWidget *widget, const PaintedText &painted)
{
    if (painted.text.contains(ELLIPSIS))
        findings.add("cut", widget, quoted(painted.text) + QLatin1String(" is shortened"));
    else if (!isInside(widget, painted.ink))
        findings.add("cut", widget,
                     QStringLiteral("%1 needs %2 at (%3, %4), the widget has %5")
                         .arg(quoted(painted.text), asText(painted.ink.toAlignedRect().size()))
                         .arg(qRound(painted.ink.x()))
                         .arg(qRound(painted.ink.y()))
                         .arg(asText(widget->size())));
}

QString withoutSpace(QString text)
{
    text.remove(QRegularExpression(QStringLiteral("\\s")));
    return text;
}

// A label does not paint lines that have no room.
void lookForLostLines(Findings &findings, const QWidget *widget,
                      const QVector<PaintedText> &painted)
{
    const auto *label = qobject_cast<const QLabel *>(widget);
    if (label == nullptr)
        return;
    QString shown;
    for (const PaintedText &run : painted)
        shown += run.text;
    const QString whole = withoutSpace(label->text());
    const int seen = withoutSpace(shown).size();
    if (seen < whole.size() && !shown.contains(ELLIPSIS))
        findings.add("cut", widget,
                     QStringLiteral("only %1 of %2 letters of %3 are shown")
                         .arg(seen)
                         .arg(whole.size())
                         .arg(quoted(label->text())));
}

void lookForMissingGlyphs(Findings &findings, const QWidget *widget, const PaintedText &painted)
{
    const QFontMetrics metrics(painted.font);
    const auto characters = painted.text.toUcs4();
    for (const uint character : characters)
        if (!QChar::isSpace(character) && !metrics.inFontUcs4(character))
            findings.add("glyph", widget,
                         QStringLiteral("U+%1 in %2")
                             .arg(character, 4, 16, QLatin1Char('0'))
                             .arg(quoted(painted.text)));
}

bool isEnabledText(const QWidget *widget)
{
    return (isViewport(widget) ? widget->parentWidget() : widget)->isEnabled();
}

void lookForLowContrast(Findings &findings, const QWidget *widget, const PaintedText &painted,
                        const QImage &picture)
{
    const QRect around = painted.ink.toAlignedRect().adjusted(-MARGIN, -MARGIN, MARGIN, MARGIN);
    const QRect area =
        (around & widget->rect()).translated(widget->mapTo(widget->window(), QPoint()));
    if (!widget->visibleRegion().contains(painted.ink.center().toPoint()))
        return;
    const QColor ground = groundColor(picture, area, painted.color);
    const double ratio = contrast(painted.color, ground);
    if (ratio < (isEnabledText(widget) ? LEAST_CONTRAST : LEAST_DISABLED_CONTRAST))
        findings.add("pale", widget,
                     QStringLiteral("%1 in %2 on %3: %4 to 1")
                         .arg(quoted(painted.text), painted.color.name(), ground.name())
                         .arg(ratio, 0, 'f', 1));
}

// The parts of which Qt composes these overlap by design.
bool isBuiltByQt(const QWidget *widget)
{
    return qobject_cast<const QTabWidget *>(widget) != nullptr ||
           qobject_cast<const QTabBar *>(widget) != nullptr ||
           qobject_cast<const QStackedWidget *>(widget) != nullptr ||
           qobject_cast<const QComboBox *>(widget) != nullptr ||
           qobject_cast<const QAbstractScrollArea *>(widget) != nullptr || isViewport(widget);
}

QVector<QWidget *> shownChildren(const QWidget *widget)
{
    QVector<QWidget *> children;
    for (QObject *object : widget->children()) {
        auto *child = qobject_cast<QWidget *>(object);
        if (child != nullptr && !child->isWindow() && child->isVisible() &&
            !child->size().isEmpty())
            children.append(child);
    }
    return children;
}

void lookForOverlaps(Findings &findings, const QWidget *parent)
{
    if (isBuiltByQt(parent))
        return;
    const QVector<QWidget *> children = shownChildren(parent);
    for (int i = 0; i < children.size(); ++i) {
        const QRect place = children[i]->geometry();
        if (!parent->rect().contains(place))
            findings.add("overlap", children[i], QLatin1String("leaves ") + parent->objectName());
        for (int j = i + 1; j < children.size(); ++j)
            if (place.intersects(children[j]->geometry()))
                findings.add("overlap", children[i],
                             QLatin1String("lies over ") + children[j]->objectName());
    }
}

void lookForSmallRows(Findings &findings, QAbstractItemView *view, int least)
{
    const QModelIndex first =
        view->model() == nullptr ? QModelIndex() : view->indexAt(view->viewport()->rect().center());
    const int height = view->visualRect(first).height();
    if (first.isValid() && height < least &&
        view->selectionMode() != QAbstractItemView::NoSelection)
        findings.add("small", view, QStringLiteral("rows are %1 high").arg(height));
}

void lookForSmallTabs(Findings &findings, const QTabBar *tabs, int least)
{
    for (int i = 0; i < tabs->count(); ++i)
        if (std::min(tabs->tabRect(i).width(), tabs->tabRect(i).height()) < least)
            findings.add("small", tabs,
                         tabs->tabText(i) + QLatin1String(" is ") +
                             asText(tabs->tabRect(i).size()));
}

bool isTouched(const QWidget *widget)
{
    const auto *field = qobject_cast<const QLineEdit *>(widget);
    const bool shownOnly = widget->property("shownOnly").toBool();
    return qobject_cast<const QAbstractButton *>(widget) != nullptr ||
           (field != nullptr && field->isEnabled() && !shownOnly) ||
           qobject_cast<const QComboBox *>(widget) != nullptr ||
           qobject_cast<const QAbstractSlider *>(widget) != nullptr;
}

void lookForSmallControls(Findings &findings, QWidget *widget, int least)
{
    if (auto *view = qobject_cast<QAbstractItemView *>(widget))
        lookForSmallRows(findings, view, least);
    else if (const auto *tabs = qobject_cast<const QTabBar *>(widget))
        lookForSmallTabs(findings, tabs, least);
    else if (isTouched(widget) && std::min(widget->width(), widget->height()) < least)
        findings.add("small", widget, asText(widget->size()));
}

void lookAt(Findings &findings, QWidget *widget, int leastTouch, const QImage &picture)
{
    const QVector<PaintedText> texts = paintedTexts(widget);
    lookForLostLines(findings, widget, texts);
    for (const PaintedText &painted : texts) {
        lookForCuts(findings, widget, painted);
        lookForMissingGlyphs(findings, widget, painted);
        lookForLowContrast(findings, widget, painted, picture);
    }
    lookForOverlaps(findings, widget);
    lookForSmallControls(findings, widget, leastTouch);
    for (QWidget *child : shownChildren(widget))
        lookAt(findings, child, leastTouch, picture);
}

} // namespace

Json fitFindings(QWidget *root, int leastTouch)
{
    Findings findings;
    lookAt(findings, root, leastTouch,
           root->grab().toImage().convertToFormat(QImage::Format_RGB32));
    return findings.list();
}

Json fitFindings()
{
    QWidget *root = QApplication::activePopupWidget();
    if (root == nullptr)
        root = QApplication::activeModalWidget();
    const bool small = panelScreen().height() < SMALL_SCREEN_LINES;
    return fitFindings(root != nullptr ? root : mainWindow(),
                       small ? SMALL_SCREEN_TOUCH : LEAST_TOUCH);
}

} // namespace control
