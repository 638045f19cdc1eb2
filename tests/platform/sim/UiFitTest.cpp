#include "platform/sim/UiFit.h"

#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QtTest>

using Plant = void (*)(QWidget &page);
Q_DECLARE_METATYPE(Plant)

namespace {

constexpr int LEAST_TOUCH = 40;

template <typename Widget, typename... Args>
Widget *put(QWidget &page, const char *name, const QRect &place, Args &&...args)
{
    auto *widget = new Widget(std::forward<Args>(args)..., &page);
    widget->setObjectName(QLatin1String(name));
    widget->setGeometry(place);
    return widget;
}

// A page with one of everything, and nothing wrong with it.
void furnish(QWidget &page)
{
    page.resize(400, 300);
    page.setObjectName("page"_s);
    page.setStyleSheet("QWidget{background-color:white;color:black;}"_s);
    put<QLabel>(page, "caption", {0, 0, 200, 40}, "Adresse 网络"_s);
    auto *greyed = put<QPushButton>(page, "greyed", {200, 0, 100, 40}, "Save"_s);
    greyed->setStyleSheet("color:#8c8c8c;"_s); // 3.4 to 1: enough where it is disabled
    greyed->setEnabled(false);
    put<QLineEdit>(page, "field", {0, 50, 200, 40})->setText("255"_s);
    put<QLineEdit>(page, "shown", {0, 270, 200, 20})->setEnabled(false);
    auto *list = put<QListWidget>(page, "list", {0, 100, 200, 60});
    list->setStyleSheet("QListWidget::item{min-height:40px;}"_s);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->addItems({"one"_s, "two, half cut"_s}); // by the lower edge
    auto *tabs = put<QTabBar>(page, "tabs", {0, 170, 300, 40});
    tabs->setStyleSheet("QTabBar::tab{height:40px;width:100px;}"_s);
    tabs->addTab("General"_s);
    tabs->addTab("Language"_s);
}

QLabel *caption(QWidget &page)
{
    return page.findChild<QLabel *>("caption"_s);
}

} // namespace

// Plants a fault on a page and expects the audit to find it, and nothing else.
class UiFitTest : public QObject
{
    Q_OBJECT

private slots:
    void findsWhatIsWrong_data();
    void findsWhatIsWrong();
};

void UiFitTest::findsWhatIsWrong_data()
{
    QTest::addColumn<Plant>("plant");
    QTest::addColumn<QString>("found"); // kind and widget
    const auto fault = [](const char *name, Plant plant, const char *found) {
        QTest::newRow(name) << plant << QString::fromLatin1(found);
    };
    fault(
        "nothing", [](QWidget &) {}, "");
    fault(
        "label too narrow", [](QWidget &page) { caption(page)->resize(30, 40); },
        "cut caption cut caption"); // one run of letters for each font
    fault(
        "lines too many",
        [](QWidget &page) {
            caption(page)->setWordWrap(true);
            caption(page)->setText(
                "One word after the other, until no room is left "_s.repeated(4));
        },
        "cut caption");
    fault(
        "field too narrow",
        [](QWidget &page) {
            page.findChild<QLineEdit *>("field"_s)->setText("0123456789"_s.repeated(6));
        },
        "cut field");
    fault(
        "row elided",
        [](QWidget &page) {
            page.findChild<QListWidget *>()->item(0)->setText("a long name "_s.repeated(8));
            page.findChild<QListWidget *>()->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        },
        "cut qt_scrollarea_viewport");
    fault(
        "tab elided",
        [](QWidget &page) {
            page.findChild<QTabBar *>()->setElideMode(Qt::ElideRight);
            page.findChild<QTabBar *>()->setTabText(1, "Communication settings"_s);
        },
        "cut tabs");
    fault(
        "sibling covered", [](QWidget &page) { page.findChild<QPushButton *>()->move(190, 10); },
        "overlap caption");
    fault(
        "out of the page", [](QWidget &page) { page.findChild<QPushButton *>()->move(350, 0); },
        "overlap greyed");
    fault(
        "no glyph",
        [](QWidget &page) {
            const uint unassigned = 0x10FFFD;
            caption(page)->setText(QString::fromUcs4(&unassigned, 1));
        },
        "glyph caption");
    fault(
        "button too small", [](QWidget &page) { page.findChild<QPushButton *>()->resize(80, 39); },
        "small greyed");
    fault(
        "rows too low",
        [](QWidget &page) {
            page.findChild<QListWidget *>()->setStyleSheet("QListWidget::item{height:30px;}"_s);
        },
        "small list");
    fault(
        "tabs too low",
        [](QWidget &page) {
            page.findChild<QTabBar *>()->setStyleSheet("QTabBar::tab{height:20px;width:100px;}"_s);
        },
        "small tabs small tabs");
    fault(
        "pale text", [](QWidget &page) { caption(page)->setStyleSheet("color:#8c8c8c;"_s); },
        "pale caption pale caption");
    fault(
        "pale where disabled",
        [](QWidget &page) { page.findChild<QPushButton *>()->setStyleSheet("color:#c4c4c3;"_s); },
        "pale greyed");
    fault(
        "pale ground",
        [](QWidget &page) {
            page.findChild<QLineEdit *>("field"_s)->setStyleSheet("background:#555555;"_s);
        },
        "pale field");
}

void UiFitTest::findsWhatIsWrong()
{
    QFETCH(Plant, plant);
    QFETCH(QString, found);

    QWidget page;
    furnish(page);
    plant(page);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QStringList kinds;
    for (const sim::Json &finding : sim::fitFindings(&page, LEAST_TOUCH))
        kinds += QString::fromStdString(finding["kind"].get<std::string>() + " " +
                                        finding["widget"].get<std::string>());
    QCOMPARE(kinds.join(QLatin1Char(' ')), found);
}

QTEST_MAIN(UiFitTest)
#include "UiFitTest.moc"
