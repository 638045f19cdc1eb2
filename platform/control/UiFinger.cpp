// Presses and drags of a finger, as events in the queue of the native window.
#include "platform/control/UiWidgets.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QMouseEvent>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QWindow>

#include <cstdlib>

namespace control {
namespace {

[[noreturn]] void noSuchRow(const QWidget *widget, int row)
{
    throw BadRequest(widget->objectName().toStdString() + " has no row " + std::to_string(row));
}

// `position` is in the widget's coordinates. Qt leads an event of the native window to the widget
// itself, dialogs and pop-ups considered. The event is posted rather than sent through the window
// system, which would turn two quick presses into a double click.
void post(QWidget *widget, QEvent::Type type, const QPoint &position)
{
    QWidget *window = widget->window();
    const QPoint local = widget->mapTo(window, position);
    const bool moves = type == QEvent::MouseMove;
    const bool down = type != QEvent::MouseButtonRelease;
    QCoreApplication::postEvent(window->windowHandle(),
                                new QMouseEvent(type, local, local, window->mapToGlobal(local),
                                                moves ? Qt::NoButton : Qt::LeftButton,
                                                down ? Qt::LeftButton : Qt::NoButton,
                                                Qt::NoModifier));
}

// A place on a widget, in the widget's coordinates.
struct Place
{
    QWidget *widget;
    QPoint position;
};

void tap(const Place &place)
{
    post(place.widget, QEvent::MouseButtonPress, place.position);
    post(place.widget, QEvent::MouseButtonRelease, place.position);
}

// Scrolls the row into sight.
Place placeOfRow(QAbstractItemView *view, const QWidget *owner, int row)
{
    const QModelIndex index = view->model()->index(row, 0, view->rootIndex());
    if (!index.isValid())
        noSuchRow(owner, row);
    view->scrollTo(index);
    return {view->viewport(), (view->visualRect(index) & view->viewport()->rect()).center()};
}

Place placeOfTab(const QTabWidget *tabs, int tab)
{
    QTabBar *bar = tabs->tabBar();
    if (tab >= tabs->count())
        noSuchRow(tabs, tab);
    return {bar, (bar->tabRect(tab) & bar->rect()).center()};
}

void tapChoice(QComboBox *box, int row)
{
    if (row >= box->count())
        noSuchRow(box, row);
    box->showPopup();
    // The list is laid out when control returns to the event loop.
    QTimer::singleShot(0, box, [box, row] { tap(placeOfRow(box->view(), box, row)); });
}

// Of a combo box the widget itself: its rows are not there before it is open.
Place placeOf(QWidget *widget, int row)
{
    auto *view = qobject_cast<QAbstractItemView *>(widget);
    const auto *tabs = qobject_cast<const QTabWidget *>(widget);
    if (row >= 0 && view)
        return placeOfRow(view, widget, row);
    if (row >= 0 && tabs)
        return placeOfTab(tabs, row);
    return {widget, widget->rect().center()};
}

// A slider's handle and its travel, in pixels.
class Handle
{
public:
    explicit Handle(const QSlider *slider)
    {
        // A pointer to the protected member may be taken through a derived class.
        struct Access : QSlider
        {
            using QSlider::initStyleOption;
        };
        (slider->*(&Access::initStyleOption))(&m_option);
        const QStyle *style = slider->style();
        m_groove =
            style->subControlRect(QStyle::CC_Slider, &m_option, QStyle::SC_SliderGroove, slider);
        m_handle =
            style->subControlRect(QStyle::CC_Slider, &m_option, QStyle::SC_SliderHandle, slider);
    }

    QPoint centre() const { return m_handle.center(); }

    // Where the handle's centre must be for the value nearest to `value`.
    QPoint centreFor(int value) const
    {
        int best = 0;
        for (int offset = 0; offset <= travel(); ++offset)
            if (std::abs(valueAt(offset) - value) < std::abs(valueAt(best) - value))
                best = offset;
        const QPoint offset = m_handle.center() - m_handle.topLeft();
        return isHorizontal() ? QPoint(m_groove.x() + best + offset.x(), m_handle.center().y())
                              : QPoint(m_handle.center().x(), m_groove.y() + best + offset.y());
    }

private:
    bool isHorizontal() const { return m_option.orientation == Qt::Horizontal; }
    int travel() const
    {
        return isHorizontal() ? m_groove.width() - m_handle.width()
                              : m_groove.height() - m_handle.height();
    }
    int valueAt(int offset) const
    {
        return QStyle::sliderValueFromPosition(m_option.minimum, m_option.maximum, offset, travel(),
                                               m_option.upsideDown);
    }

    QStyleOptionSlider m_option;
    QRect m_groove;
    QRect m_handle;
};

} // namespace

bool hasRows(const QWidget *widget)
{
    return qobject_cast<const QAbstractItemView *>(widget) ||
           qobject_cast<const QTabWidget *>(widget) || qobject_cast<const QComboBox *>(widget);
}

void pressWidget(QWidget *widget, int row)
{
    auto *box = qobject_cast<QComboBox *>(widget);
    if (row >= 0 && box)
        tapChoice(box, row);
    else
        tap(placeOf(widget, row));
}

QPoint pressPoint(QWidget *widget, int row)
{
    const Place place = placeOf(widget, row);
    return screenRect(place.widget).topLeft() + place.position;
}

QLine slidePath(const QWidget *widget, int value)
{
    const auto *slider = qobject_cast<const QSlider *>(widget);
    const std::string name = widget->objectName().toStdString();
    if (slider == nullptr)
        throw BadRequest(name + " is no slider");
    if (value < slider->minimum() || value > slider->maximum())
        throw BadRequest(name + " goes from " + std::to_string(slider->minimum()) + " to " +
                         std::to_string(slider->maximum()));
    const Handle handle(slider);
    return {handle.centre(), handle.centreFor(value)};
}

void dragSlider(QWidget *widget, int value)
{
    const QLine path = slidePath(widget, value);
    post(widget, QEvent::MouseButtonPress, path.p1());
    post(widget, QEvent::MouseMove, path.center());
    post(widget, QEvent::MouseMove, path.p2());
    post(widget, QEvent::MouseButtonRelease, path.p2());
}

} // namespace control
