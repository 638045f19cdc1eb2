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
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QGlyphRun>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRawFont>
#include <QTextLayout>

class LookTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    void fontFollowsWidthAndLanguage_data()
    {
        // width of the screen | pixels in Chinese | in any other language
        rows({"320 | 12 | 10", "479 | 12 | 10", "480 | 14 | 12", "799 | 14 | 12", "800 | 20 | 20",
              "1024 | 20 | 20", "1025 | 36 | 36", "1920 | 36 | 36"});
    }

    void fontFollowsWidthAndLanguage()
    {
        sim::panel().set("lcd.width", number(0));
        g_nLanguge = 0;
        QCOMPARE(GetFontStyle(), "font: 75 %1px simsun;"_s.arg(number(1)));
        for (const int other : {1, 7}) {
            g_nLanguge = other;
            QCOMPARE(GetFontStyle(), "font: 75 %1px Calibri;"_s.arg(number(2)));
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
            QVERIFY2(!run.glyphIndexes().contains(0), qPrintable(run.rawFont().familyName()));
    }

    void coloursCanBeRead_data()
    {
        // what is written | on which grounds | at which contrast
        rows({
            "ink | surface shade pressed title undone mark accentGround | 4.5",
            "mutedInk | surface | 4.5",
            "selectedInk | selected | 4.5",
            "bad | surface | 4.5",
            "disabledInk | surface shade | 4.5", // 3 would do
            "accent | surface | 3",              // a line, not a text
            "pressedLine | surface pressed | 3",
            "signalGood | chip | 4.5",
            "signalFair | chip | 4.5",
            "signalBad | chip | 4.5",
            "connectedName | chip | 4.5",
        });
    }

    // Contrast as the Web Content Accessibility Guidelines count it.
    void coloursCanBeRead()
    {
        const auto light = [](const QColor &colour) {
            const auto linear = [](double part) {
                return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
            };
            return 0.05 + 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
                   0.0722 * linear(colour.blueF());
        };
        const QColor front = themeColour(cell(0));
        QVERIFY(front.isValid());
        for (const QString &ground : cell(1).split(QLatin1Char(' '))) {
            const QColor back = themeColour(ground);
            QVERIFY2(back.isValid(), qPrintable(ground));
            const double ratio =
                std::max(light(front), light(back)) / std::min(light(front), light(back));
            QVERIFY2(ratio >= cell(2).toDouble(), qPrintable("%1 on %2"_s.arg(ratio).arg(ground)));
        }
    }

    void layoutsGrowOnce()
    {
        sim::panel().set("lcd.width", 1024);
        sim::panel().set("lcd.height", 544);
        QWidget page;
        auto *layout = new QGridLayout(&page);
        layout->setContentsMargins(2, 8, 0, 6);
        layout->setHorizontalSpacing(4);
        layout->addItem(new QSpacerItem(16, 0, QSizePolicy::Fixed), 0, 0);
        growLayouts(&page);
        growLayouts(&page);
        QCOMPARE(layout->contentsMargins(), QMargins(2, 16, 0, 12)); // 2 is a frame's line
        QCOMPARE(layout->horizontalSpacing(), 8);
        QCOMPARE(layout->itemAt(0)->sizeHint(), QSize(32, 0));
    }

    void tabsFollowTheScreen()
    {
        sim::panel().set("lcd.width", 1024);
        sim::panel().set("lcd.height", 600);
        g_nLanguge = 1;
        QVERIFY(tabStyle().startsWith("QTabBar::tab {width:204px;height:50px;color: black;"
                                      "font: 75 20px Calibri;outline: none;"_s));
    }

    void boxShowsItsType_data()
    {
        // type | icon | stretch of the button row, from its left | the second button
        rows({"0 | /Question.png | 4 3 1 3 1 | Cancel", "1 | /Information.png | 8 3 1",
              "2 | /Warning.png | 8 3 1", "3 | /Critical.png | 8 3 1", "4 | | 8 3 1",
              "-1 | | 8 3 1"});
    }

    void boxShowsItsType()
    {
        MessageBox box(number(0), nullptr);
        const QString style = box.findChild<QLabel *>("lab_Img"_s)->styleSheet();
        QCOMPARE(style.isEmpty(), cell(1).isEmpty());
        QVERIFY(style.contains(cell(1)));
        const auto *row = box.findChild<QBoxLayout *>("buttonRow"_s);
        const QStringList stretch = cell(2).split(QLatin1Char(' '));
        for (int place = 0; place < stretch.size(); ++place)
            QCOMPARE(row->stretch(place), stretch[place].toInt());
        QCOMPARE(box.findChild<QPushButton *>("btn_Cancel"_s)->isHidden(),
                 cellOrEmpty(3).isEmpty());
    }

    void boxAnswers()
    {
        for (const auto &[pressed, answer] : {std::pair("btn_Ok"_s, 1), {"btn_Cancel"_s, 0}}) {
            MessageBox box(BOX_QUESTION, nullptr);
            const int clicks = sim::panel().get("buzzer.opens").get<int>();
            auto *button = box.findChild<QPushButton *>(pressed);
            QTimer::singleShot(0, button, &QPushButton::click);
            QCOMPARE(box.exec(), answer);
            QCOMPARE(sim::panel().get("buzzer.opens").get<int>(), clicks + 1);
        }
    }

    void boxShowsPlainText()
    {
        MessageBox box(BOX_INFORMATION, nullptr);
        placeOnScreen(&box, {400, 200}, {0, 0});
        const QString hostile = "<b>%s</b> "_s.repeated(40);
        box.setText(hostile);
        box.show();
        const auto *label = box.findChild<QLabel *>("label"_s);
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(box.size(), QSize(400, 200)); // wrapped, not widened
        QVERIFY(box.rect().contains(QRect(label->mapTo(&box, QPoint(0, 0)), label->size())));
    }

    void hiddenWidgetWaitsForItsStyle()
    {
        QLabel label;
        setStyleOnce(&label, "color:red;"_s);
        setStyleWhenSeen(&label, "color:green;"_s);
        setStyleWhenSeen(&label, "color:blue;"_s);
        QCOMPARE(label.styleSheet(), "color:red;"_s);
        label.show();
        QCOMPARE(label.styleSheet(), "color:blue;"_s);
        label.hide();
        setStyleWhenSeen(&label, "color:green;"_s);
        setStyleOnce(&label, "color:black;"_s); // the newest holds
        label.show();
        QCOMPARE(label.styleSheet(), "color:black;"_s);
        label.hide();
        setStyleWhenSeen(&label, "color:red;"_s);
        applyPendingStyles(&label);
        QCOMPARE(label.styleSheet(), "color:red;"_s);
    }

    void dialogsStayOnTheScreen()
    {
        sim::panel().set("lcd.width", 1024);
        sim::panel().set("lcd.height", 600);
        QWidget window;
        window.setGeometry(30, 40, 1024, 600); // a desktop puts it anywhere
        QWidget page(&window);
        page.setGeometry(100, 50, 900, 500);
        window.show();
        QDialog dialog(&page);
        const std::pair<QPoint, QPoint> places[] = {
            {{10, 20}, {110, 70}}, {{900, 500}, {624, 300}}, {{-500, -500}, {0, 0}}};
        for (const auto &[offset, place] : places) {
            placeOverPage(&dialog, {400, 300}, &page, offset);
            QCOMPARE(dialog.pos() - window.mapToGlobal(QPoint(0, 0)), place);
        }

        page.setParent(nullptr); // taken out of the window, and raises a box all the same
        placeOnScreen(&dialog, {400, 300}, {5, 6});
        QCOMPARE(dialog.pos() - window.mapToGlobal(QPoint(0, 0)), QPoint(5, 6));
    }
};

QTEST_MAIN(LookTest)
#include "LookTest.moc"
