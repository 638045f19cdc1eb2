#include "network/AccessPointList.h"

#include "app/look/FingerScroll.h"
#include "app/look/Screen.h"
#include "app/look/Theme.h"
#include "network/ListItem.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

// Paints below a row's widget: the line between rows, and the shade of a touched one.
class RowDelegate : public QStyledItemDelegate
{
public:
    RowDelegate(int height, QObject *parent) : QStyledItemDelegate(parent), m_nHeight(height) {}

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &) const override
    {
        if (option.state & QStyle::State_Selected)
            painter->fillRect(option.rect, QColor(220, 220, 220));
        painter->fillRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1,
                          QColor(0xE1, 0xE6, 0xEC));
    }

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {0, m_nHeight};
    }

private:
    int m_nHeight;
};

// Takes its name from the list, so that a new scan does not write every row.
class Row : public QListWidgetItem
{
public:
    Row(AccessPointList *list, int row) : QListWidgetItem(list), m_pList(list), m_nRow(row) {}

    QVariant data(int role) const override
    {
        return role == Qt::DisplayRole ? m_pList->nameIn(m_nRow) : QListWidgetItem::data(role);
    }

private:
    AccessPointList *m_pList;
    int m_nRow;
};

} // namespace

AccessPointList::AccessPointList(QWidget *parent) : QListWidget(parent), m_nRowHeight(touchHeight())
{
    setItemDelegate(new RowDelegate(m_nRowHeight, this));
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(NoEditTriggers);
    setFocusPolicy(Qt::NoFocus);
    new FingerScroll(this);
    verticalScrollBar()->setSingleStep(m_nRowHeight);
}

void AccessPointList::setAccessPoints(const std::vector<netT::stApInfo_tag> &accessPoints)
{
    m_former.swap(m_accessPoints);
    m_accessPoints = accessPoints;
    keepLevels();
    const int rows = static_cast<int>(m_accessPoints.size());
    while (count() > rows)
        delete takeItem(count() - 1);
    while (count() < rows)
        new Row(this, count());
    placeWidgets();
}

void AccessPointList::setEmptyText(const QString &text)
{
    if (m_sEmpty == text)
        return;
    m_sEmpty = text;
    viewport()->update();
}

void AccessPointList::paintEvent(QPaintEvent *event)
{
    QListWidget::paintEvent(event);
    if (count() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(themeColour(QStringLiteral("mutedInk")));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_sEmpty);
}

void AccessPointList::keepLevels()
{
    for (netT::stApInfo_tag &accessPoint : m_accessPoints) {
        if (isLevel(accessPoint.nLevel))
            continue;
        const auto same =
            std::find_if(m_former.begin(), m_former.end(), [&](const netT::stApInfo_tag &other) {
                return isSameNetwork(other, accessPoint);
            });
        if (same != m_former.end())
            accessPoint.nLevel = same->nLevel;
    }
}

std::optional<netT::stApInfo_tag> AccessPointList::chosen(const QListWidgetItem *item) const
{
    const int touched = row(item);
    if (m_touch && m_touch->row == touched)
        return m_touch->accessPoint;
    return in(touched);
}

std::optional<netT::stApInfo_tag> AccessPointList::in(int row) const
{
    if (row < 0 || row >= static_cast<int>(m_accessPoints.size()))
        return std::nullopt;
    return m_accessPoints[static_cast<std::size_t>(row)];
}

QString AccessPointList::nameIn(int row) const
{
    const auto accessPoint = in(row);
    return accessPoint ? ListItem::shownName(accessPoint->sSsid) : QString();
}

void AccessPointList::retranslate()
{
    for (ListItem *widget : m_widgets)
        widget->retranslate();
}

void AccessPointList::showEvent(QShowEvent *event)
{
    QListWidget::showEvent(event);
    placeWidgets();
}

void AccessPointList::resizeEvent(QResizeEvent *event)
{
    QListWidget::resizeEvent(event);
    placeWidgets();
}

void AccessPointList::scrollContentsBy(int dx, int dy)
{
    QListWidget::scrollContentsBy(dx, dy);
    placeWidgets();
}

void AccessPointList::mousePressEvent(QMouseEvent *event)
{
    const int row = indexAt(event->pos()).row();
    const auto accessPoint = in(row);
    m_touch.reset();
    if (accessPoint)
        m_touch = Touch{row, *accessPoint};
    QListWidget::mousePressEvent(event);
}

void AccessPointList::mouseReleaseEvent(QMouseEvent *event)
{
    // Queued, since the click below lasts as long as the keyboard that it opens.
    QMetaObject::invokeMethod(this, &QListWidget::clearSelection, Qt::QueuedConnection);
    QListWidget::mouseReleaseEvent(event);
}

// Widgets are made when the list is first seen.
void AccessPointList::placeWidgets()
{
    if (!isVisible())
        return;
    const int top = verticalScrollBar()->value();
    const int first = top / m_nRowHeight;
    const int last = (top + viewport()->height() - 1) / m_nRowHeight;
    const int end = std::max(first, std::min(last + 1, count()));
    arrangeWidgets(first, end);
    for (int row = first; row < end; ++row) {
        ListItem *widget = m_widgets[static_cast<std::size_t>(row - first)];
        widget->setAccessPoint(m_accessPoints[static_cast<std::size_t>(row)]);
        widget->setGeometry(0, row * m_nRowHeight - top, viewport()->width(), m_nRowHeight);
        widget->show();
    }
    for (std::size_t i = static_cast<std::size_t>(end - first); i < m_widgets.size(); ++i)
        m_widgets[i]->hide();
}

// A widget goes with its network into another row: moving it costs far less than rewriting it.
void AccessPointList::arrangeWidgets(int first, int end)
{
    while (static_cast<int>(m_widgets.size()) < end - first)
        m_widgets.push_back(newWidget());
    const std::vector<ListItem *> former = m_widgets;
    auto place = m_widgets.begin();
    for (int row = first; row < end; ++row, ++place) {
        const netT::stApInfo_tag &accessPoint = m_accessPoints[static_cast<std::size_t>(row)];
        const auto found = std::find_if(place, m_widgets.end(), [&](const ListItem *widget) {
            return widget->shows(accessPoint);
        });
        if (found != m_widgets.end())
            std::iter_swap(place, found);
    }
    if (m_widgets == former)
        return;
    for (ListItem *widget : m_widgets)
        widget->raise(); // the order of the children is that of the rows
}

ListItem *AccessPointList::newWidget()
{
    auto *widget = new ListItem(viewport());
    widget->setAttribute(Qt::WA_TransparentForMouseEvents); // the list itself is touched
    return widget;
}
