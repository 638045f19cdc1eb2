#include "app/look/FingerScroll.h"

#include "app/look/PanelCombo.h"
#include "app/look/Screen.h"

#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>
#include <QWindow>

#include <array>

namespace {

constexpr int ROWS = 40;

QStringList rows()
{
    QStringList texts;
    for (int row = 0; row < ROWS; ++row)
        texts += QStringLiteral("row %1").arg(row);
    return texts;
}

// By way of the window, as the window system does: it is the pressed widget that gets what follows.
void finger(QWidget *window, QEvent::Type type, const QPoint &at)
{
    const bool up = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, at, window->mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window->windowHandle(), &event);
}

void slide(QAbstractScrollArea *area, const QPoint &from, int way)
{
    QWidget *window = area->window();
    const QPoint start = area->viewport()->mapTo(window, from);
    finger(window, QEvent::MouseButtonPress, start);
    finger(window, QEvent::MouseMove, start + QPoint(0, way / 2));
    finger(window, QEvent::MouseMove, start + QPoint(0, way));
    finger(window, QEvent::MouseButtonRelease, start + QPoint(0, way));
}

} // namespace

class FingerScrollTest : public QObject
{
    Q_OBJECT

private slots:
    // The touch is no click, and another row does not become the chosen one on the way.
    void listFollows()
    {
        const int rest = touchHeight() / 4;
        const std::array<int, 3> slides[] = {// way, rows, where a bar at 100 goes
                                             {-60, ROWS, 160 - rest},
                                             {60, ROWS, 40 + rest},
                                             {150, ROWS, 0},
                                             {60, 4, 0}};
        for (const auto &[way, rowsThere, expected] : slides) {
            QListWidget list;
            list.addItems(rows().mid(0, rowsThere));
            new FingerScroll(&list);
            list.resize(200, 200);
            list.show();
            QSignalSpy clicks(&list, &QListWidget::itemClicked);
            slide(&list, list.visualItemRect(list.item(1)).center(), 2); // a finger that rests
            QCOMPARE(clicks.size(), 1);
            list.verticalScrollBar()->setValue(100);

            slide(&list, {50, 20}, way);
            QCOMPARE(list.verticalScrollBar()->value(), expected);
            QCOMPARE(list.currentRow(), 1);
            QCOMPARE(list.selectedItems(), {list.item(1)});
            finger(&list, QEvent::MouseMove, {50, 150}); // of nobody
            QCOMPARE(list.verticalScrollBar()->value(), expected);
            QCOMPARE(clicks.size(), 1);
            slide(&list, {50, 20}, 0);
            QCOMPARE(clicks.size(), 2);
        }
    }

    // The bar says so as if it had been moved by its handle: a page can tell it from its own
    // scrolling.
    void widgetsFollow()
    {
        QScrollArea area;
        auto *tall = new QWidget;
        tall->setFixedSize(100, 1000);
        area.setWidget(tall);
        new FingerScroll(&area);
        area.resize(150, 200);
        area.show();
        QSignalSpy actions(area.verticalScrollBar(), &QScrollBar::actionTriggered);
        slide(&area, {50, 150}, -100);
        QCOMPARE(area.verticalScrollBar()->value(), 100 - touchHeight() / 4);
        QVERIFY(!actions.isEmpty());
    }

    // The list stays open under a slide, and the choice as it was.
    void choicesFollow()
    {
        PanelCombo box;
        box.setMaxVisibleItems(10); // no slide leaves the list: the popup gets a first move outside
        box.addItems(rows());
        box.setCurrentIndex(3);
        box.show();
        box.showPopup();
        QAbstractItemView *list = box.view();
        QTRY_VERIFY(list->isVisible());
        list->verticalScrollBar()->setValue(0);
        slide(list, list->viewport()->rect().center(), -60);
        QCOMPARE(list->verticalScrollBar()->value(), 60 - touchHeight() / 4);
        QVERIFY(list->isVisible());
        QCOMPARE(box.currentIndex(), 3);
        box.hidePopup();
    }
};

QTEST_MAIN(FingerScrollTest)
#include "FingerScrollTest.moc"
