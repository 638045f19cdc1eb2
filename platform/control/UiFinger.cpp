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

void tap(QWidget *widget, const QPoint &position)
{
    post(widget, QEvent::MouseButtonPress, position);
    post(widget, QEvent::MouseButtonRelease, position);
}

void tapRow(QAbstractItemView *view, const QWidget *owner, int row)
{
    const QModelIndex index = view->model()->index(row, 0, view->rootIndex());
    if (!index.isValid())
        noSuchRow(owner, row);
    view->scrollTo(index);
    tap(view->viewport(), (view->visualRect(index) & view->viewport()->rect()).center());
}

void tapTab(const QTabWidget *tabs, int tab)
{
    QTabBar *bar = tabs->tabBar();
    if (tab >= tabs->count())
        noSuchRow(tabs, tab);
    tap(bar, (bar->tabRect(tab) & bar->rect()).center());
}

void tapChoice(QComboBox *box, int row)
{
    if (row >= box->count())
        noSuchRow(box, row);
    box->showPopup();
    // The list is laid out when control returns to the event loop.
    QTimer::singleShot(0, box, [box, row] { tapRow(box->view(), box, row); });
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
    auto *view = qobject_cast<QAbstractItemView *>(widget);
    auto *box = qobject_cast<QComboBox *>(widget);
    const auto *tabs = qobject_cast<const QTabWidget *>(widget);
    if (row >= 0 && view)
        tapRow(view, widget, row);
    else if (row >= 0 && box)
        tapChoice(box, row);
    else if (row >= 0 && tabs)
        tapTab(tabs, row);
    else
        tap(widget, widget->rect().center());
}

void dragSlider(QWidget *widget, int value)
{
    const auto *slider = qobject_cast<const QSlider *>(widget);
    const std::string name = widget->objectName().toStdString();
    if (slider == nullptr)
        throw BadRequest(name + " is no slider");
    if (value < slider->minimum() || value > slider->maximum())
        throw BadRequest(name + " goes from " + std::to_string(slider->minimum()) + " to " +
                         std::to_string(slider->maximum()));
    const Handle handle(slider);
    const QPoint from = handle.centre();
    const QPoint to = handle.centreFor(value);
    post(widget, QEvent::MouseButtonPress, from);
    post(widget, QEvent::MouseMove, (from + to) / 2);
    post(widget, QEvent::MouseMove, to);
    post(widget, QEvent::MouseButtonRelease, to);
}

} // namespace control
