#include "app/look/FingerScroll.h"

#include "app/look/PanelCombo.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QWindow>

namespace {

void slide(QAbstractScrollArea *area, const QPoint &from, int way)
{
    QWindow *window = area->window()->windowHandle();
    const QPoint start = area->viewport()->mapTo(area->window(), from);
    QTest::mousePress(window, Qt::LeftButton, {}, start);
    QTest::mouseMove(window, start + QPoint(0, way / 2));
    QTest::mouseMove(window, start + QPoint(0, way));
    QTest::mouseRelease(window, Qt::LeftButton, {}, start + QPoint(0, way));
}

} // namespace

class FingerScrollTest : public QObject
{
    Q_OBJECT

private slots:
    // way of the finger | rows | where a bar at 100 goes: the first 12 pixels are no slide
    void listFollows_data()
    {
        rows({"-60 | 40 | 148", "60 | 40 | 52", "150 | 40 | 0", "60 | 4 | 0"});
    }
    // The touch is no click, and another row does not become the chosen one on the way.
    void listFollows()
    {
        QListWidget list;
        list.addItems(QVector<QString>(number(1), "row"_s).toList());
        new FingerScroll(&list);
        list.resize(200, 200);
        list.show();
        QSignalSpy clicks(&list, &QListWidget::itemClicked);
        slide(&list, list.visualItemRect(list.item(1)).center(), 2); // a finger that rests
        QCOMPARE(clicks.size(), 1);
        list.verticalScrollBar()->setValue(100);
        slide(&list, {50, 20}, number(0));
        QCOMPARE(list.currentRow(), 1);
        QCOMPARE(list.selectedItems(), {list.item(1)});
        QMouseEvent nobodys(QEvent::MouseMove, {50, 150}, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list.viewport(), &nobodys);
        QCOMPARE(list.verticalScrollBar()->value(), number(2));
        QCOMPARE(clicks.size(), 1);
        slide(&list, {50, 20}, 0);
        QCOMPARE(clicks.size(), 2);
    }

    // The bar says so as if it had been moved by its handle: a page can tell it from its own
    // scrolling.
    void widgetsFollow()
    {
        QScrollArea area;
        area.setWidget(new QWidget);
        area.widget()->setFixedSize(100, 1000);
        new FingerScroll(&area);
        area.resize(150, 200);
        area.show();
        QSignalSpy actions(area.verticalScrollBar(), &QScrollBar::actionTriggered);
        slide(&area, {50, 150}, -100);
        QCOMPARE(area.verticalScrollBar()->value(), 88);
        QVERIFY(!actions.isEmpty());
    }

    // A finger in a glove opens the list; it stays open under a slide, and the choice as it was.
    void choicesFollow()
    {
        PanelCombo box;
        box.setMaxVisibleItems(10); // no slide leaves the list: the popup gets a first move outside
        box.addItems(QVector<QString>(40, "row"_s).toList());
        box.setCurrentIndex(3);
        box.show();
        QTest::mousePress(&box, Qt::LeftButton);
        QTest::qWait(QApplication::doubleClickInterval() + 100);
        QTest::mouseRelease(&box, Qt::LeftButton);
        QAbstractItemView *list = box.view();
        list->verticalScrollBar()->setValue(0);
        slide(list, list->viewport()->rect().center(), -60);
        QCOMPARE(list->verticalScrollBar()->value(), 48);
        QVERIFY(list->isVisible());
        QCOMPARE(box.currentIndex(), 3);
    }
};

QTEST_MAIN(FingerScrollTest)
#include "FingerScrollTest.moc"
