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

#include <QGlyphRun>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRawFont>
#include <QTextLayout>
#include <QtTest>

class LookTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void fontFollowsWidthAndLanguage_data();
    void fontFollowsWidthAndLanguage();
    void fontsHaveSubstitutes_data();
    void fontsHaveSubstitutes();
    void coloursCanBeRead_data();
    void coloursCanBeRead();
    void layoutsGrowOnce();
    void tabsFollowTheScreen();
    void boxShowsItsType_data();
    void boxShowsItsType();
    void boxAnswers_data();
    void boxAnswers();
    void boxShowsPlainText();
    void hiddenWidgetWaitsForItsStyle();
    void dialogsStayOnTheScreen_data();
    void dialogsStayOnTheScreen();
};

void LookTest::fontFollowsWidthAndLanguage_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("style");
    const auto row = [](int width, const char *chinese, const char *latin) {
        QTest::addRow("%d Chinese", width) << width << 0 << QString::fromLatin1(chinese);
        QTest::addRow("%d English", width) << width << 1 << QString::fromLatin1(latin);
        QTest::addRow("%d another", width) << width << 7 << QString::fromLatin1(latin);
    };
    row(320, "font: 75 12px simsun;", "font: 75 10px Calibri;");
    row(479, "font: 75 12px simsun;", "font: 75 10px Calibri;");
    row(480, "font: 75 14px simsun;", "font: 75 12px Calibri;");
    row(799, "font: 75 14px simsun;", "font: 75 12px Calibri;");
    row(800, "font: 75 20px simsun;", "font: 75 20px Calibri;");
    row(1024, "font: 75 20px simsun;", "font: 75 20px Calibri;");
    row(1025, "font: 75 36px simsun;", "font: 75 36px Calibri;");
    row(1920, "font: 75 36px simsun;", "font: 75 36px Calibri;");
}

void LookTest::fontFollowsWidthAndLanguage()
{
    QFETCH(int, width);
    QFETCH(int, language);
    sim::panel().set("lcd.width", width);
    g_nLanguge = language;
    QTEST(GetFontStyle(), "style");
}

void LookTest::fontsHaveSubstitutes_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QStringList>("faces");
    QTest::newRow("Chinese") << QStringLiteral("simsun")
                             << QStringList{QStringLiteral("SimSun"),
                                            QStringLiteral("WenQuanYi Micro Hei")};
    QTest::newRow("Latin") << QStringLiteral("Calibri")
                           << QStringList{QStringLiteral("Calibri"), QStringLiteral("Carlito")};
}

// By the fontconfig file alone.
void LookTest::fontsHaveSubstitutes()
{
    QFETCH(QString, family);
    QFETCH(QStringList, faces);
    const QFont font(family);
    QVERIFY2(faces.contains(QFontInfo(font).family()), qPrintable(QFontInfo(font).family()));
    QTextLayout layout(QStringLiteral("请检查网线两端是否插好 Check the cable √×…"), font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    for (const QGlyphRun &run : layout.glyphRuns())
        QVERIFY2(!run.glyphIndexes().contains(0), qPrintable(run.rawFont().familyName()));
}

void LookTest::coloursCanBeRead_data()
{
    QTest::addColumn<QString>("ink");
    QTest::addColumn<QStringList>("grounds");
    QTest::addColumn<double>("least");
    const auto row = [](const char *ink, const char *grounds, double least) {
        QTest::newRow(ink) << QString::fromLatin1(ink)
                           << QString::fromLatin1(grounds).split(QLatin1Char(' ')) << least;
    };
    row("ink", "surface shade pressed title undone mark accentGround", 4.5);
    row("mutedInk", "surface", 4.5);
    row("selectedInk", "selected", 4.5);
    row("bad", "surface", 4.5);
    row("disabledInk", "surface shade", 4.5); // 3 would do
    row("accent", "surface", 3);              // a line, not a text
    row("pressedLine", "surface pressed", 3);
    row("rgb(0, 170, 255)", "chip", 4.5);
    row("rgb(206, 206, 0)", "chip", 4.5);
    row("rgb(255, 0, 0)", "chip", 4.5);
    row("rgb(71, 148, 214)", "chip", 4.5);
}

// Contrast as the Web Content Accessibility Guidelines count it.
void LookTest::coloursCanBeRead()
{
    QFETCH(QString, ink);
    QFETCH(QStringList, grounds);
    QFETCH(double, least);
    const auto light = [](const QColor &colour) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.05 + 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const QColor front = themeColour(ink);
    QVERIFY(front.isValid());
    for (const QString &ground : grounds) {
        const QColor back = themeColour(ground);
        QVERIFY2(back.isValid(), qPrintable(ground));
        const double ratio =
            std::max(light(front), light(back)) / std::min(light(front), light(back));
        QVERIFY2(ratio >= least, qPrintable(QStringLiteral("%1 on %2").arg(ratio).arg(ground)));
    }
}

void LookTest::layoutsGrowOnce()
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

void LookTest::tabsFollowTheScreen()
{
    sim::panel().set("lcd.width", 1024);
    sim::panel().set("lcd.height", 600);
    g_nLanguge = 1;
    QVERIFY(
        tabStyle().startsWith(QStringLiteral("QTabBar::tab {width:204px;height:50px;color: black;"
                                             "font: 75 20px Calibri;outline: none;")));
}

void LookTest::boxShowsItsType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("cancel");
    QTest::newRow("question") << 0 << QStringLiteral("/Question.png") << true;
    QTest::newRow("information") << 1 << QStringLiteral("/Information.png") << false;
    QTest::newRow("warning") << 2 << QStringLiteral("/Warning.png") << false;
    QTest::newRow("critical") << 3 << QStringLiteral("/Critical.png") << false;
    QTest::newRow("another") << 4 << QString() << false;
    QTest::newRow("below the table") << -1 << QString() << false;
}

void LookTest::boxShowsItsType()
{
    QFETCH(int, type);
    QFETCH(QString, icon);
    MessageBox box(type, nullptr);
    const QString style = box.findChild<QLabel *>(QStringLiteral("lab_Img"))->styleSheet();
    QCOMPARE(style.isEmpty(), icon.isEmpty());
    QVERIFY(style.contains(icon));
    const auto *cancel = box.findChild<QPushButton *>(QStringLiteral("btn_Cancel"));
    QTEST(!cancel->isHidden(), "cancel");
}

void LookTest::boxAnswers_data()
{
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<int>("answer");
    QTest::newRow("OK") << QStringLiteral("btn_Ok") << 1;
    QTest::newRow("Cancel") << QStringLiteral("btn_Cancel") << 0;
}

void LookTest::boxAnswers()
{
    QFETCH(QString, pressed);
    MessageBox box(BOX_QUESTION, nullptr);
    const auto clicks = sim::panel().get("buzzer.opens").get<int>();
    QTimer::singleShot(0, &box, [&] { box.findChild<QPushButton *>(pressed)->click(); });
    QTEST(box.exec(), "answer");
    QCOMPARE(sim::panel().get("buzzer.opens").get<int>(), clicks + 1);
}

void LookTest::boxShowsPlainText()
{
    MessageBox box(BOX_INFORMATION, nullptr);
    placeOnScreen(&box, {400, 200}, {0, 0});
    const QString hostile = QStringLiteral("<b>%s</b> ").repeated(40);
    box.setText(hostile);
    box.show();
    const auto *label = box.findChild<QLabel *>(QStringLiteral("label"));
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QCOMPARE(box.size(), QSize(400, 200)); // wrapped, not widened
    QVERIFY(box.rect().contains(QRect(label->mapTo(&box, QPoint(0, 0)), label->size())));
}

void LookTest::hiddenWidgetWaitsForItsStyle()
{
    QLabel label;
    const auto style = [](const char *colour) {
        return QStringLiteral("color:%1;").arg(QLatin1String(colour));
    };
    setStyleOnce(&label, style("red"));
    setStyleWhenSeen(&label, style("green"));
    setStyleWhenSeen(&label, style("blue"));
    QCOMPARE(label.styleSheet(), style("red"));
    label.show();
    QCOMPARE(label.styleSheet(), style("blue"));
    label.hide();
    setStyleWhenSeen(&label, style("green"));
    setStyleOnce(&label, style("black")); // the newest holds
    label.show();
    QCOMPARE(label.styleSheet(), style("black"));
    label.hide();
    setStyleWhenSeen(&label, style("red"));
    wearLateStyles(&label);
    QCOMPARE(label.styleSheet(), style("red"));
}

void LookTest::dialogsStayOnTheScreen_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("inside") << QPoint(10, 20) << QPoint(110, 70);
    QTest::newRow("beyond right and bottom") << QPoint(900, 500) << QPoint(624, 300);
    QTest::newRow("beyond left and top") << QPoint(-500, -500) << QPoint(0, 0);
}

void LookTest::dialogsStayOnTheScreen()
{
    QFETCH(QPoint, offset);
    sim::panel().set("lcd.width", 1024);
    sim::panel().set("lcd.height", 600);
    QWidget window;
    window.setGeometry(30, 40, 1024, 600); // a desktop puts it anywhere
    QWidget page(&window);
    page.setGeometry(100, 50, 900, 500);
    window.show();
    QDialog dialog(&page);
    placeOverPage(&dialog, {400, 300}, &page, offset);
    QTEST(dialog.pos() - window.mapToGlobal(QPoint(0, 0)), "place");

    page.setParent(nullptr); // taken out of the window, and raises a box all the same
    placeOnScreen(&dialog, {400, 300}, {5, 6});
    QCOMPARE(dialog.pos() - window.mapToGlobal(QPoint(0, 0)), QPoint(5, 6));
}

QTEST_MAIN(LookTest)
#include "LookTest.moc"
