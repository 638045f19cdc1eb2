#include "tests/support/Dialogs.h"

#include "platform/sim/Panel.h"
#include "tests/support/Text.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QLabel>
#include <QPushButton>
#include <QQueue>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

namespace {

constexpr int POLL_MS = 10;
constexpr int PATIENCE_MS = 10000;

struct Request
{
    const char *className;
    std::function<bool(QWidget *)> step;
};

QQueue<Request> requests;
QElapsedTimer sinceProgress;

void giveUp()
{
    QTest::qFail(requests.head().className, __FILE__, __LINE__);
    requests.clear();
    while (QWidget *dialog = QApplication::activeModalWidget())
        dialog->hide();
}

void work()
{
    if (requests.isEmpty())
        return;
    if (sinceProgress.hasExpired(PATIENCE_MS))
        return giveUp();
    // First, because a step may open a dialog that the next request is for.
    QTimer::singleShot(POLL_MS, &work);
    QWidget *dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || !dialog->inherits(requests.head().className))
        return;
    const Request request = requests.dequeue();
    if (request.step(dialog))
        sinceProgress.start();
    else
        requests.prepend(request);
}

// Whether the keyboard took the press: it clicks then, and only then.
bool press(QPushButton *key)
{
    const int before = keyClicks();
    QTest::mouseClick(key, Qt::LeftButton);
    return keyClicks() > before;
}

// A visible key by its object name, or any by its label.
QPushButton *visibleKey(const QWidget *keyboard, const QString &names, const QString &label = {})
{
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(names));
    for (QPushButton *key : keyboard->findChildren<QPushButton *>(pattern)) {
        if (key->isVisible() && (label.isEmpty() || key->text() == label))
            return key;
    }
    return nullptr;
}

QPushButton *keyFor(const QWidget *keyboard, QChar character)
{
    static const QHash<QChar, QString> named = {
        {u'\n', "btn_._enter"_s}, {u'\b', "btn_._del(ete)?"_s}, {u'\x1b', "btn_close"_s},
        {u' ', "btn_._space"_s},  {u'&', "btn_15"_s},           {u'\a', "btn_Eye"_s}};
    const bool isNamed = named.contains(character);
    return visibleKey(keyboard, named.value(character, ".*"_s), isNamed ? QString() : character);
}

// The key that leads to the page, or the case, in which `character` is.
QPushButton *switchKeyFor(const QWidget *keyboard, QChar character)
{
    if (character.isLetter() || character == u' ')
        return visibleKey(keyboard, "btn_(c_Shift|._abc)"_s);
    return visibleKey(keyboard, character.isDigit() ? "btn_._123"_s : "btn_._char"_s);
}

} // namespace

void whenOpen(const char *className, const std::function<bool(QWidget *)> &step)
{
    if (requests.isEmpty()) {
        sinceProgress.start();
        QTimer::singleShot(POLL_MS, &work);
    }
    requests.enqueue({className, step});
}

void answerNextBox(int result, QString *text)
{
    whenOpen("MessageBox", [result, text](QWidget *box) {
        if (text != nullptr)
            *text = box->findChild<QLabel *>("label"_s)->text();
        const QString button = result == 1 ? "btn_Ok"_s : "btn_Cancel"_s;
        QTest::mouseClick(box->findChild<QPushButton *>(button), Qt::LeftButton);
        return true;
    });
}

void typeOnKeyboard(const QString &keys)
{
    for (const QChar character : keys) {
        whenOpen("SoftKeyboard", [character](const QWidget *keyboard) {
            QPushButton *key = keyFor(keyboard, character);
            const bool taken = press(key != nullptr ? key : switchKeyFor(keyboard, character));
            return taken && key != nullptr;
        });
    }
}

bool dialogsDone()
{
    return requests.isEmpty();
}

int keyClicks()
{
    return sim::panel().get("buzzer.opens").get<int>();
}
