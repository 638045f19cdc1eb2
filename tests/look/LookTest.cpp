#include "app/look/BoxHelpers.h"
#include "app/look/FontStyle.h"
#include "app/look/MessageBox.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/Theme.h"
#include "app/look/WidgetLook.h"
#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "tests/support/Dialogs.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QGlyphRun>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextLayout>

class LookTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init() { sim::panel().set("lcd", {{"width", 1024}, {"height", 600}}); }

    // width of the screen | pixels in Chinese | in any other language
    void fontFollowsWidthAndLanguage_data()
    {
        rows({"320 | 12 | 10", "479 | 12 | 10", "480 | 14 | 12", "799 | 14 | 12", "800 | 20 | 20",
              "1024 | 20 | 20", "1025 | 36 | 36", "1920 | 36 | 36"});
    }

    void fontFollowsWidthAndLanguage()
    {
        sim::panel().set("lcd.width", number(0));
        for (const int language : {0, 1, 7}) {
            g_nLanguge = language;
            const QString font = language == 0 ? cell(1) + "px simsun"_s : cell(2) + "px Calibri"_s;
            QCOMPARE(GetFontStyle(), "font: 75 %1;"_s.arg(font));
        }
    }

    void fontsHaveSubstitutes_data()
    {
        rows({"simsun | SimSun | WenQuanYi Micro Hei", "Calibri | Calibri | Carlito"});
    }

    // By the fontconfig file alone.
    void fontsHaveSubstitutes()
    {
        const QFont font(cell(0));
        const QString face = QFontInfo(font).family();
        QVERIFY2(face == cell(1) || face == cell(2), qPrintable(face));
        QTextLayout layout("请检查网线两端是否插好 Check the cable √×…"_s, font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        for (const QGlyphRun &run : layout.glyphRuns())
            QVERIFY(!run.glyphIndexes().contains(0));
    }

    // what is written | on which grounds | at which contrast: 3 is for lines, not for texts
    void coloursCanBeRead_data()
    {
        rows({"ink | surface shade pressed title undone mark accentGround | 4.5",
              "mutedInk bad disabledInk | surface | 4.5", "disabledInk | shade | 4.5",
              "selectedInk | selected | 4.5", "accent pressedLine | surface | 3",
              "pressedLine | pressed | 3",
              "signalGood signalFair signalBad connectedName | chip | 4.5"});
    }

    // Contrast as the Web Content Accessibility Guidelines count it.
    void coloursCanBeRead()
    {
        const auto light = [](const QColor &colour) {
            double sum = 0.05;
            for (const auto &[part, share] : {std::pair(colour.redF(), 0.2126),
                                              {colour.greenF(), 0.7152},
                                              {colour.blueF(), 0.0722}})
                sum += share *
                       (part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4));
            return sum;
        };
        for (const QString &ink : cell(0).split(u' ')) {
            for (const QString &ground : cell(1).split(u' ')) {
                const QColor front = themeColour(ink);
                const QColor back = themeColour(ground);
                QVERIFY2(front.isValid() && back.isValid(), qPrintable(ink + u' ' + ground));
                const auto [dark, bright] = std::minmax({light(front), light(back)});
                QVERIFY2(bright / dark >= cell(2).toDouble(), qPrintable(ink + u' ' + ground));
            }
        }
    }

    void layoutsGrowOnce()
    {
        QWidget page;
        auto *layout = new QGridLayout(&page);
        layout->setContentsMargins(2, 8, 0, 6);
        layout->setHorizontalSpacing(4);
        layout->addItem(new QSpacerItem(16, 0, QSizePolicy::Fixed), 0, 0);
        growLayouts(&page);
        growLayouts(&page);
        QCOMPARE(layout->contentsMargins(), QMargins(2, 17, 0, 13)); // 2 is a frame's line
        QCOMPARE(layout->horizontalSpacing(), 8);
        QCOMPARE(layout->itemAt(0)->sizeHint(), QSize(35, 0));
    }

    void tabsFollowTheScreen()
    {
        g_nLanguge = 1;
        QVERIFY(tabStyle().startsWith("QTabBar::tab {width:204px;height:50px;color: black;"
                                      "font: 75 20px Calibri;outline: none;"_s));
    }

    // type | icon | stretch of the button row, from its left | the button pressed, and its answer
    void boxShowsItsType_data()
    {
        rows({"0 | /Question.png | 4 3 1 3 1 | btn_Cancel | 0",
              "0 | /Question.png | 4 3 1 3 1 | btn_Ok | 1",
              "1 | /Information.png | 8 3 1 | btn_Ok | 1", "2 | /Warning.png | 8 3 1 | btn_Ok | 1",
              "3 | /Critical.png | 8 3 1 | btn_Ok | 1", "4 | | 8 3 1 | btn_Ok | 1",
              "-1 | | 8 3 1 | btn_Ok | 1"});
    }
    // A long text is plain, and wrapped instead of widening the box.
    void boxShowsItsType()
    {
        MessageBox box(number(0), nullptr);
        placeOnScreen(&box, {400, 200}, {0, 0});
        box.setText("<b>%s</b> "_s.repeated(40));
        const QString style = box.findChild<QLabel *>("lab_Img"_s)->styleSheet();
        QCOMPARE(style.isEmpty(), cell(1).isEmpty());
        QVERIFY(style.contains(cell(1)));
        const auto *row = box.findChild<QBoxLayout *>("buttonRow"_s);
        const QStringList stretch = cell(2).split(u' ');
        for (int place = 0; place < stretch.size(); ++place)
            QCOMPARE(row->stretch(place), stretch[place].toInt());
        QCOMPARE(box.findChild<QPushButton *>("btn_Cancel"_s)->isHidden(), number(0) != 0);
        const int clicks = keyClicks();
        QTimer::singleShot(0, box.findChild<QPushButton *>(cell(3)), &QPushButton::click);
        QCOMPARE(box.exec(), number(4));
        QCOMPARE(keyClicks(), clicks + 1);
        const auto *label = box.findChild<QLabel *>("label"_s);
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(box.size(), QSize(400, 200));
        QVERIFY(box.rect().contains(QRect(label->mapTo(&box, QPoint(0, 0)), label->size())));
    }

    void hiddenWidgetWaitsForItsStyle()
    {
        QLabel label;
        setStyleOnce(&label, "color:red;"_s);
        setStyleWhenSeen(&label, "color:green;"_s);
        setStyleWhenSeen(&label, "color:blue;"_s);
        QCOMPARE(label.styleSheet(), "color:red;"_s);
        applyPendingStyles(&label);
        QCOMPARE(label.styleSheet(), "color:blue;"_s);
        setStyleWhenSeen(&label, "color:green;"_s);
        setStyleOnce(&label, "color:black;"_s); // the newest holds
        label.show();
        QCOMPARE(label.styleSheet(), "color:black;"_s);
        label.hide();
        setStyleWhenSeen(&label, "color:red;"_s);
        label.show();
        QCOMPARE(label.styleSheet(), "color:red;"_s);
    }

    void dialogsStayOnTheScreen()
    {
        QWidget window;
        window.setGeometry(30, 40, 1024, 600); // a desktop puts it anywhere
        QWidget page(&window);
        page.setGeometry(100, 50, 900, 500);
        window.show();
        QDialog dialog(&page);
        const auto place = [&] { return dialog.pos() - window.mapToGlobal(QPoint(0, 0)); };
        placeOverPage(&dialog, {400, 300}, &page, {10, 20});
        QCOMPARE(place(), QPoint(110, 70));
        placeOverPage(&dialog, {400, 300}, &page, {900, 500});
        QCOMPARE(place(), QPoint(624, 300));
        placeOverPage(&dialog, {400, 300}, &page, {-500, -500});
        QCOMPARE(place(), QPoint(0, 0));
        page.setParent(nullptr); // taken out of the window, and raises a box all the same
        placeOnScreen(&dialog, {400, 300}, {5, 6});
        QCOMPARE(place(), QPoint(5, 6));
    }
};

QTEST_MAIN(LookTest)
#include "LookTest.moc"
