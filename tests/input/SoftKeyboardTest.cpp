#include "app/look/Screen.h"
#include "input/FieldKeyboard.h"
#include "platform/sim/Panel.h"
#include "tests/support/Dialogs.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>

namespace {

int keyClicks()
{
    return sim::panel().get("buzzer.opens").get<int>();
}

QString shownText(const QWidget *keyboard)
{
    return keyboard->findChild<QLineEdit *>("line_Text"_s)->text();
}

QPushButton *button(const QWidget *keyboard, const char *name)
{
    return keyboard->findChild<QPushButton *>(QLatin1String(name));
}

QString visibleOf(const QWidget *keyboard, const QStringList &names)
{
    QStringList visible;
    for (const QString &name : names) {
        if (keyboard->findChild<QWidget *>(name)->isVisible())
            visible += name;
    }
    return visible.join(QLatin1Char(' '));
}

const char *const NOTHING = "(nothing)";

} // namespace

Q_DECLARE_METATYPE(KeyboardSizeOf)

class SoftKeyboardTest : public QObject
{
    Q_OBJECT

private slots:
    void firstPressOfProcessAndTremblesAreDropped(); // has to be first
    void cleanup();
    void entries_data();
    void entries();
    void looks_data();
    void looks();
    void revealedEntryHasNoLimitButForSpace();
    void lettersEnterKeepsLeadingZero();
    void pluggedInKeyboardOnlyCloses();
    void gateOpensToThePasswordAlone();
    void fieldTakesEntry();
    void fieldIsNamedAndMarked_data();
    void fieldIsNamedAndMarked();
    void placeOverPage_data();
    void placeOverPage();
};

void SoftKeyboardTest::cleanup()
{
    QVERIFY(dialogsDone());
}

void SoftKeyboardTest::firstPressOfProcessAndTremblesAreDropped()
{
    SoftKeyboard keyboard(nullptr, QString());
    keyboard.setMaxLength(9);
    whenOpen("SoftKeyboard", [](QWidget *open) {
        QStringList shown;
        for (const int pause : {0, 160, 100, 60}) {
            QTest::qWait(pause);
            QTest::mouseClick(button(open, "btn_c_q"), Qt::LeftButton);
            shown += shownText(open);
        }
        open->hide();
        return QTest::qCompare(shown, {QString(), "q"_s, "q"_s, "qq"_s}, "", "", __FILE__,
                               __LINE__);
    });
    keyboard.setMode(KB_MODE_TEXT);
    QCOMPARE(keyClicks(), 2);
}

void SoftKeyboardTest::entries_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("initial");
    QTest::addColumn<int>("limit"); // number mode: 1 to limit; else the length
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("emitted");
    QTest::addColumn<QString>("got");
    const auto row = [](const char *name, int mode, const char *initial, int limit,
                        const char *keys, const char *emitted, const char *got) {
        QTest::newRow(name) << mode << QString::fromLatin1(initial) << limit
                            << QString::fromLatin1(keys) << QString::fromLatin1(emitted)
                            << QString::fromLatin1(got);
    };
    const int number = KB_MODE_NUMBER;
    row("first key replaces", number, "9600", 9600, "1\n", "1", "1");
    row("number pad drops zero", number, "1", 31, "07\n", "7", "07");
    row("no second zero; 0 below min", number, "1", 9, "00\n\x1b", NOTHING, NOTHING);
    row("above max", number, "1", 31, "32\n\x1b", NOTHING, NOTHING);
    row("max", number, "1", 31, "31\n", "31", "31");
    row("empty", number, "1", 31, "\b\b\n\x1b", NOTHING, NOTHING);
    row("unchanged", number, "12", 31, "\n", NOTHING, NOTHING);
    row("no int holds it", number, "99999999999", 31, "\n\x1b", NOTHING, NOTHING);

    const int text = KB_MODE_TEXT;
    row("text is never accepted", text, "", 9, "a\n", "a", NOTHING);
    row("text unchanged", text, "old", 9, "\n", "old", NOTHING);
    row("space keeps the old text", text, "old", 9, " \n", "old ", NOTHING);
    row("first key after space clears", text, "old", 9, " a\n", "a", NOTHING);
    row("letters stop at length", text, "", 1, "ab\n", "a", NOTHING);
    row("space, & stop at length", text, "", 2, "&& &\n", "&&", NOTHING);
    row("delete, then append", text, "", 9, "ab\bc\n", "ac", NOTHING);
    row("capitals, digits, signs", text, "", 9, "Qz1?\n", "Qz1?", NOTHING);
    row("closed", text, "old", 9, "a\x1b", NOTHING, NOTHING);

    const int hidden = KB_MODE_HIDDEN_TEXT;
    row("hidden", hidden, "old", 9, "a\n", "a", "a");
    row("hidden unchanged", hidden, "old", 9, "\n", "old", NOTHING);
    row("password mode without one", KB_MODE_PASSWORD, "", 9, "\n\x1b", NOTHING, NOTHING);
}

void SoftKeyboardTest::entries()
{
    QFETCH(int, mode);
    QFETCH(int, limit);
    QFETCH(QString, initial);
    QFETCH(QString, keys);
    SoftKeyboard keyboard(nullptr, initial);
    QSignalSpy entered(&keyboard, &SoftKeyboard::Sgl_InputText);
    keyboard.setRange(1, limit);
    keyboard.setMaxLength(limit);
    typeOnKeyboard(keys);
    keyboard.setMode(mode);
    const QString nothing = QString::fromLatin1(NOTHING);
    QTEST(entered.isEmpty() ? nothing : entered.takeFirst().at(0).toString(), "emitted");
    QVERIFY(entered.isEmpty());
    QString got = nothing;
    const int result = keyboard.getText(got);
    QCOMPARE(result, got == nothing ? -1 : 0);
    QTEST(got, "got");
}

void SoftKeyboardTest::looks_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("visible");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("alignment");
    const int left = Qt::AlignLeft;
    QTest::newRow("password") << 0 << "lab_Passwd btn_Eye btn_c_q"_s
                              << "**"_s << left;
    QTest::newRow("number") << 1 << "lab_Min lab_Max btn_n_abc"_s
                            << "ab"_s << int(Qt::AlignHCenter);
    QTest::newRow("text") << 2 << "btn_c_q"_s
                          << "ab"_s << left;
    QTest::newRow("hidden text") << 3 << "btn_Eye btn_c_q"_s
                                 << "**"_s << left;
}

void SoftKeyboardTest::looks()
{
    QFETCH(int, mode);
    SoftKeyboard keyboard(nullptr, "ab"_s);
    keyboard.resize(500, 400);
    keyboard.setRange(1, 31);
    QString visible;
    bool closeIsSquare = false;
    auto *line = keyboard.findChild<QLineEdit *>("line_Text"_s);
    whenOpen("SoftKeyboard", [&](QWidget *open) {
        visible = visibleOf(open, {"lab_Passwd"_s, "lab_Min"_s, "lab_Max"_s, "btn_Eye"_s,
                                   "btn_c_q"_s, "btn_n_abc"_s});
        const QWidget *close = button(open, "btn_close");
        closeIsSquare =
            close->width() == close->height() && close->visibleRegion() == QRegion(close->rect());
        open->hide();
        return true;
    });
    keyboard.setMode(mode);
    QTEST(visible, "visible");
    QTEST(line->displayText().replace(QChar(0x25cf), QLatin1Char('*')), "shown");
    QTEST(int(line->alignment()), "alignment");
    QCOMPARE(keyboard.findChild<QLabel *>("lab_Max"_s)->text(), "Max:31"_s);
    QCOMPARE(button(&keyboard, "btn_n_abc")->isEnabled(), mode != KB_MODE_NUMBER);
    QVERIFY(closeIsSquare);
}

void SoftKeyboardTest::revealedEntryHasNoLimitButForSpace()
{
    SoftKeyboard keyboard(nullptr, QString());
    keyboard.setMaxLength(1);
    typeOnKeyboard("ab"_s);
    pressOnKeyboard("btn_Eye"_s);
    typeOnKeyboard("c "_s);
    pressOnKeyboard("btn_Eye"_s);
    typeOnKeyboard("d\n"_s);
    keyboard.setMode(KB_MODE_HIDDEN_TEXT);
    QString text;
    QCOMPARE(keyboard.getText(text), 0);
    QCOMPARE(text, "ac"_s);
}

void SoftKeyboardTest::lettersEnterKeepsLeadingZero()
{
    SoftKeyboard keyboard(nullptr, QString());
    QSignalSpy entered(&keyboard, &SoftKeyboard::Sgl_InputText);
    keyboard.setRange(1, 31);
    typeOnKeyboard("05"_s);
    whenOpen("SoftKeyboard", [](QWidget *open) {
        button(open, "btn_c_enter")->click();
        return !open->isVisible();
    });
    keyboard.setMode(KB_MODE_NUMBER);
    QCOMPARE(entered.value(0).value(0).toString(), "05"_s);
}

void SoftKeyboardTest::pluggedInKeyboardOnlyCloses()
{
    QWidget page;
    QLineEdit field("5"_s, &page);
    whenOpen("SoftKeyboard", [](QWidget *open) {
        QTest::keyClicks(open, "7 "_s);
        QTest::keyClick(open, Qt::Key_Return);
        const bool unmoved = open->isVisible() && shownText(open) == QLatin1String("5");
        QTest::keyClick(open, Qt::Key_Escape);
        return unmoved;
    });
    QVERIFY(!editWithKeyboard(numberRequest(&page, &field, 1, 31)));
    QCOMPARE(field.text(), "5"_s);
}

void SoftKeyboardTest::gateOpensToThePasswordAlone()
{
    QWidget window;
    QString complaint;
    typeOnKeyboard("a\n"_s);
    answerNextBox(1, &complaint);
    whenOpen("SoftKeyboard", [](QWidget *gate) {
        QTest::keyClick(gate, Qt::Key_Escape);
        gate->close();
        button(gate, "btn_close")->click();
        return gate->isVisible() && shownText(gate) == QLatin1String("a");
    });
    typeOnKeyboard("B\n"_s);
    runPasswordGate(&window, "aB"_s);
    QCOMPARE(complaint, "Password error!"_s);
}

void SoftKeyboardTest::fieldTakesEntry()
{
    QWidget page;
    QLineEdit field("5"_s, &page);
    const int before = keyClicks();
    QString entered;
    typeOnKeyboard("07\n"_s);
    QVERIFY(editWithKeyboard(numberRequest(&page, &field, 1, 31), &entered));
    QCOMPARE(field.text(), "7"_s);
    QCOMPARE(entered, "07"_s);
    QCOMPARE(keyClicks() - before, 1 + 3);
}

void SoftKeyboardTest::fieldIsNamedAndMarked_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("caption");
    QTest::newRow("colon") << "Backlight:"_s
                           << "Backlight"_s;
    QTest::newRow("wide colon") << "网关："_s
                                << "网关"_s;
    QTest::newRow("bare, and no markup") << "<b>Wait</b>"_s
                                         << "<b>Wait</b>"_s;
    QTest::newRow("longer than the strip")
        << QString(500, QLatin1Char('W')) << QString(500, QLatin1Char('W'));
}

// By its own label, not by the neighbour's; and no longer than it is edited, even if its page goes.
void SoftKeyboardTest::fieldIsNamedAndMarked()
{
    QFETCH(QString, label);
    QWidget page;
    page.setStyleSheet("QLineEdit[edited=\"true\"]{color:#ff0000;}"_s);
    QLabel neighbour("Other:"_s, &page);
    QLabel caption(label, &page);
    QLineEdit other(&page);
    QLineEdit field(&page);
    neighbour.setBuddy(&other);
    caption.setBuddy(&field);
    page.show();
    const auto isMarked = [](const QLineEdit &line) {
        return line.palette().color(QPalette::Text) == Qt::red;
    };
    QString said;
    bool fits = false;
    bool marked = false;
    whenOpen("SoftKeyboard", [&](QWidget *open) {
        const auto *strip = open->findChild<QLabel *>("lab_Field"_s);
        said = strip->text();
        fits = strip->textFormat() != Qt::RichText && button(open, "btn_close")->x() > 0 &&
               open->width() <= screenSize().width();
        marked = isMarked(field) && !isMarked(other);
        page.hide();
        open->hide();
        return true;
    });
    editWithKeyboard(numberRequest(&page, &field, 1, 31));
    QTEST(said, "caption");
    QVERIFY(fits && marked);
    QVERIFY(!isMarked(field));
}

void SoftKeyboardTest::placeOverPage_data()
{
    QTest::addColumn<QRect>("page");
    QTest::addColumn<KeyboardSizeOf>("sizeOf");
    QTest::addColumn<QRect>("keyboard");
    using Of = KeyboardSizeOf;
    QTest::newRow("over the page")
        << QRect(100, 50, 800, 500) << Of::Screen << QRect(260, 125, 563, 420);
    QTest::newRow("kept on the screen")
        << QRect(600, 300, 400, 300) << Of::Screen << QRect(461, 180, 563, 420);
    QTest::newRow("sized by the page")
        << QRect(100, 50, 800, 500) << Of::Page << QRect(260, 125, 440, 350);
}

void SoftKeyboardTest::placeOverPage()
{
    QFETCH(QRect, page);
    sim::panel().set("lcd.width", 1024);
    sim::panel().set("lcd.height", 600);
    QWidget window;
    window.setGeometry(0, 0, 1024, 600);
    QWidget panel(&window);
    panel.setGeometry(page);
    KeyboardRequest request = textRequest(&panel, nullptr, KB_MODE_HIDDEN_TEXT, 9);
    QFETCH(KeyboardSizeOf, sizeOf);
    request.sizeOf = sizeOf;
    QRect placed;
    whenOpen("SoftKeyboard", [&placed](QWidget *open) {
        placed = open->geometry();
        open->hide();
        return true;
    });
    editWithKeyboard(request);
    QTEST(placed, "keyboard");
}

QTEST_MAIN(SoftKeyboardTest)
#include "SoftKeyboardTest.moc"
