#include "platform/control/UiFit.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>

namespace {

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
    page.setStyleSheet("QWidget{background-color:white;color:black;}"_s);
    put<QLabel>(page, "caption", {0, 0, 200, 40}, "Adresse 网络"_s)->setWordWrap(true);
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
    tabs->setElideMode(Qt::ElideRight);
    tabs->addTab("General"_s);
    tabs->addTab("Language"_s);
}

// Gives a property of the widget, or of a row or tab of it, another value.
void plant(QWidget *widget, const QString &property, const QString &value)
{
    auto *list = qobject_cast<QListWidget *>(widget);
    auto *tabs = qobject_cast<QTabBar *>(widget);
    const QStringList sides = value.split(u' ');
    if (property == "place"_s)
        widget->setGeometry(sides[0].toInt(), sides[1].toInt(), sides[2].toInt(), sides[3].toInt());
    else if (list != nullptr && property == "text"_s)
        list->item(0)->setText(value);
    else if (tabs != nullptr && property == "text"_s)
        tabs->setTabText(1, value);
    else
        widget->setProperty(property.toLatin1(), value);
}

} // namespace

// Plants a fault on a page and expects the audit to find it, and nothing else.
class UiFitTest : public QObject
{
    Q_OBJECT

private slots:
    // widget | property and value | kind and widget of each finding
    void findsWhatIsWrong_data()
    {
        rows({"page | place 0 0 400 300 |",
              "caption | place 0 0 30 40 | cut caption cut caption", // one run of letters for each
                                                                     // font
              "caption | text One word after the other, until no room is left | cut caption",
              "field | text 0123456789012345678901234567890123456789 | cut field",
              "list | text a long name, and another one behind it | cut qt_scrollarea_viewport",
              "tabs | text Communication settings | cut tabs",
              "greyed | place 190 10 100 40 | overlap caption",
              "greyed | place 350 0 100 40 | overlap greyed",
              "caption | text \U0010FFFD | glyph caption", // assigned to nothing
              "greyed | place 200 0 80 39 | small greyed",
              "list | styleSheet QListWidget::item{height:30px;} | small list",
              "tabs | styleSheet QTabBar::tab{height:20px;width:100px;} | small tabs small tabs",
              "caption | styleSheet color:#8c8c8c; | pale caption pale caption",
              "greyed | styleSheet color:#c4c4c3; | pale greyed",
              "field | styleSheet background:#555555; | pale field"});
    }
    void findsWhatIsWrong()
    {
        QWidget page;
        furnish(page);
        QWidget *widget = cell(0) == "page"_s ? &page : page.findChild<QWidget *>(cell(0));
        plant(widget, cell(1).section(u' ', 0, 0), cell(1).section(u' ', 1));
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        QStringList kinds;
        for (const control::Json &finding : control::fitFindings(&page, 40))
            kinds += QString::fromStdString(finding["kind"].get<std::string>() + " " +
                                            finding["widget"].get<std::string>());
        QCOMPARE(kinds.join(u' '), cell(2));
    }
};

QTEST_MAIN(UiFitTest)
#include "UiFitTest.moc"
