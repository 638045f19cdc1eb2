#include "input/FieldKeyboard.h"
#include "tests/support/Dialogs.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

QPushButton *button(const QWidget *keyboard, const char *name)
{
    return keyboard->findChild<QPushButton *>(QLatin1String(name));
}

// Looks at the keyboard when it is open, and dismisses it.
void glanceAt(const std::function<void(QWidget *keyboard)> &look)
{
    whenOpen("SoftKeyboard", [look](QWidget *keyboard) {
        look(keyboard);
        QTest::keyClick(keyboard, Qt::Key_Escape);
        return !keyboard->isVisible();
    });
}

// What the marks of a table stand for.
QString unmarked(QString text)
{
    const QString marks = "␣⏎⌫✕◉"_s;
    const QString keys = " \n\b\x1b\a"_s;
    for (int i = 0; i < marks.size(); ++i)
        text.replace(marks[i], keys[i]);
    return text;
}

} // namespace

class SoftKeyboardTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QVERIFY(dialogsDone()); }

    // Has to be first.
    void firstPressOfProcessAndTremblesAreDropped()
    {
        SoftKeyboard keyboard(nullptr, QString());
        keyboard.setMaxLength(9);
        glanceAt([&](QWidget *open) {
            QStringList shown;
            for (const int pause : {0, 160, 100, 60}) {
                QTest::qWait(pause);
                QTest::mouseClick(button(open, "btn_c_q"), Qt::LeftButton);
                shown += open->findChild<QLineEdit *>()->text();
            }
            QCOMPARE(shown, QStringList({QString(), "q"_s, "q"_s, "qq"_s}));
        });
        keyboard.setMode(KB_MODE_TEXT);
        QCOMPARE(keyClicks(), 2);
    }

    // mode | text before | range, or the length | keys | signal | text got, "-" for none
    void entries_data()
    {
        rows({"1 | 1 | 1 31 | 07⏎ | 7 | 07",   // the first key replaces; the pad drops the zero
              "1 | 1 | 0 9 | 00⏎ | 0 | 0",     // no second zero
              "1 | 1 | 1 9 | 0⏎✕ | - | -",     // below the range
              "1 | 1 | 1 31 | 32⏎✕ | - | -",   // above it
              "1 | 1 | 31 31 | 31⏎ | 31 | 31", // both ends belong to it
              "1 | 1 | 0 31 | ⌫⌫⏎✕ | - | -",   // empty
              "1 | 12 | 1 31 | ⏎ | - | -",     // unchanged
              "1 | 99999999999 | 1 31 | ⏎✕ | - | -", // no int holds it
              "1 | | 1 31 | 05 letters | 05 | 05",   // the letters' Enter keeps the zero
              "2 | old | 9 | ⏎ | old | -",
              "2 | old | 9 | ␣⏎ | old␣ | -", // space keeps the text
              "2 | old | 9 | ␣a⏎ | a | -",   // the first key after it clears
              "2 | | 1 | ab⏎ | a | -",       // letters stop at the length; text is never accepted
              "2 | | 2 | &&␣&⏎ | && | -",    // and so do these
              "2 | | 9 | ab⌫Qz1?⏎ | aQz1? | -", "2 | old | 9 | a✕ | - | -",
              "3 | | 1 | ab◉c␣◉d⏎ | ac | ac", // an open eye lifts the limit, but for space
              "3 | old | 9 | ⏎ | old | -",    // unchanged, and yet told
              "0 | | 9 | ⏎✕ | - | -"});       // no gate without a password
    }
    void entries()
    {
        SoftKeyboard keyboard(nullptr, cell(1));
        QSignalSpy entered(&keyboard, &SoftKeyboard::Sgl_InputText);
        const QStringList limits = cell(2).split(u' ');
        keyboard.setRange(limits.first().toInt(), limits.last().toInt());
        keyboard.setMaxLength(limits.last().toInt());
        typeOnKeyboard(unmarked(cell(3).section(u' ', 0, 0)));
        if (cell(3).contains(u' '))
            whenOpen("SoftKeyboard", [](QWidget *open) {
                button(open, "btn_c_enter")->click(); // there, but on a hidden page
                return !open->isVisible();
            });
        keyboard.setMode(number(0));
        QCOMPARE(entered.value(0).value(0, "-"_s).toString(), unmarked(cell(4)));
        QVERIFY(entered.size() <= 1);
        QString got = "-"_s;
        QCOMPARE(keyboard.getText(got), cell(5) == "-"_s ? -1 : 0);
        QCOMPARE(got, cell(5));
    }

    // mode | visible | text shown | its place
    void looks_data()
    {
        rows({"0 | lab_Passwd btn_Eye btn_c_q | ** | left",
              "1 | lab_Min lab_Max btn_n_abc | ab | centre", "2 | btn_c_q | ab | left",
              "3 | btn_Eye btn_c_q | ** | left"});
    }
    void looks()
    {
        SoftKeyboard keyboard(nullptr, "ab"_s);
        keyboard.resize(500, 400);
        keyboard.setRange(1, 31);
        glanceAt([&](QWidget *open) {
            QStringList visible;
            for (const QString &name : {"lab_Passwd"_s, "lab_Min"_s, "lab_Max"_s, "btn_Eye"_s,
                                        "btn_c_q"_s, "btn_n_abc"_s}) {
                if (open->findChild<QWidget *>(name)->isVisible())
                    visible += name;
            }
            QCOMPARE(visible.join(u' '), cell(1));
            const QWidget *close = button(open, "btn_close");
            QCOMPARE(close->visibleRegion(), QRegion(0, 0, close->height(), close->height()));
        });
        keyboard.setMode(number(0));
        const auto *line = keyboard.findChild<QLineEdit *>();
        QCOMPARE(line->displayText().replace(QChar(0x25cf), u'*'), cell(2));
        QCOMPARE(line->alignment(), cell(3) == "left"_s ? Qt::AlignLeft : Qt::AlignHCenter);
        QCOMPARE(keyboard.findChild<QLabel *>("lab_Max"_s)->text(), "Max:31"_s);
        QCOMPARE(button(&keyboard, "btn_n_abc")->isEnabled(), number(0) != KB_MODE_NUMBER);
    }

    void fieldTakesEntryButOfNoPluggedInKeyboard()
    {
        QWidget page;
        QLineEdit field("5"_s, &page);
        const int before = keyClicks();
        whenOpen("SoftKeyboard", [](QWidget *open) {
            QTest::keyClicks(open, "7 "_s);
            QTest::keyClick(open, Qt::Key_Return);
            return open->isVisible() && open->findChild<QLineEdit *>()->text() == "5"_s;
        });
        QString entered;
        typeOnKeyboard("07\n"_s);
        QVERIFY(editWithKeyboard(numberRequest(&page, &field, 1, 31), &entered));
        QCOMPARE(field.text(), "7"_s);
        QCOMPARE(entered, "07"_s);
        QCOMPARE(keyClicks(), before + 1 + 3);
    }

    void gateOpensToThePasswordAlone()
    {
        QWidget window;
        QString complaint;
        typeOnKeyboard("a\n"_s);
        answerNextBox(1, &complaint);
        whenOpen("SoftKeyboard", [](QWidget *gate) {
            QTest::keyClick(gate, Qt::Key_Escape);
            gate->close();
            button(gate, "btn_close")->click();
            return gate->isVisible() && gate->findChild<QLineEdit *>()->text() == "a"_s;
        });
        typeOnKeyboard("B\n"_s);
        runPasswordGate(&window, "aB"_s);
        QCOMPARE(complaint, "Password error!"_s);
    }

    // label of the field | caption, if it is another
    void fieldIsNamedAndMarked_data()
    {
        rows({"Backlight: | Backlight", "网关： | 网关", "<b>Wait</b>", "long"});
    }
    // By its own label, not by the neighbour's; and no longer than it is edited, even if its page
    // goes.
    void fieldIsNamedAndMarked()
    {
        const QString label = cell(0) == "long"_s ? QString(500, u'W') : cell(0);
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
        glanceAt([&](QWidget *open) {
            const auto *strip = open->findChild<QLabel *>("lab_Field"_s);
            QCOMPARE(strip->text(), cellOrEmpty(1).isEmpty() ? label : cellOrEmpty(1));
            QVERIFY(strip->textFormat() != Qt::RichText && button(open, "btn_close")->x() > 0);
            QVERIFY(open->width() <= 1024);
            QVERIFY(isMarked(field) && !isMarked(other));
            page.hide();
        });
        editWithKeyboard(numberRequest(&page, &field, 1, 31));
        QVERIFY(!isMarked(field));
    }

    void sizeIsOfScreenOrPage()
    {
        QWidget window;
        QWidget panel(&window);
        panel.setGeometry(100, 50, 800, 500);
        KeyboardRequest request = textRequest(&panel, nullptr, KB_MODE_HIDDEN_TEXT, 9);
        for (const auto &[sizeOf, expected] :
             {std::pair(KeyboardSizeOf::Screen, QRect(260, 125, 563, 420)),
              {KeyboardSizeOf::Page, QRect(260, 125, 440, 350)}}) {
            request.sizeOf = sizeOf;
            glanceAt([&placed = expected](QWidget *open) { QCOMPARE(open->geometry(), placed); });
            QVERIFY(!editWithKeyboard(request));
        }
    }
};

QTEST_MAIN(SoftKeyboardTest)
#include "SoftKeyboardTest.moc"
