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

class Hands : public QObject
{
public:
    void ask(const Request &request)
    {
        if (m_requests.isEmpty()) {
            m_sinceProgress.start();
            QTimer::singleShot(POLL_MS, this, &Hands::work);
        }
        m_requests.enqueue(request);
    }

    bool done() const { return m_requests.isEmpty(); }

private:
    void work()
    {
        if (m_requests.isEmpty())
            return;
        if (m_sinceProgress.hasExpired(PATIENCE_MS))
            return giveUp();
        // First, because a step may open a dialog that the next request is for.
        QTimer::singleShot(POLL_MS, this, &Hands::work);
        QWidget *dialog = QApplication::activeModalWidget();
        if (dialog == nullptr || !dialog->inherits(m_requests.head().className))
            return;
        const Request request = m_requests.dequeue();
        if (request.step(dialog))
            m_sinceProgress.start();
        else
            m_requests.prepend(request);
    }

    void giveUp()
    {
        QTest::qFail(m_requests.head().className, __FILE__, __LINE__);
        m_requests.clear();
        while (QWidget *dialog = QApplication::activeModalWidget())
            dialog->hide();
    }

    QQueue<Request> m_requests;
    QElapsedTimer m_sinceProgress;
};

Hands &hands()
{
    static Hands theHands;
    return theHands;
}

int keyClicks()
{
    return sim::panel().get("buzzer.opens").get<int>();
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
    static const QHash<QChar, QString> named = {{u'\n', "btn_._enter"_s},
                                                {u'\b', "btn_._del(ete)?"_s},
                                                {u'\x1b', "btn_close"_s},
                                                {u' ', "btn_._space"_s},
                                                {u'&', "btn_15"_s}};
    if (named.contains(character))
        return visibleKey(keyboard, named[character]);
    return visibleKey(keyboard, ".*"_s, character);
}

// The key that leads to the page, or the case, in which `character` is.
QPushButton *switchKeyFor(const QWidget *keyboard, QChar character)
{
    if (character.isLetter() || character == u' ')
        return visibleKey(keyboard, "btn_(c_Shift|._abc)"_s);
    return visibleKey(keyboard, character.isDigit() ? "btn_._123"_s : "btn_._char"_s);
}

bool typeCharacter(const QWidget *keyboard, QChar character)
{
    if (QPushButton *key = keyFor(keyboard, character))
        return press(key);
    press(switchKeyFor(keyboard, character));
    return false;
}

} // namespace

void whenOpen(const char *className, const std::function<bool(QWidget *)> &step)
{
    hands().ask({className, step});
}

void answerNextBox(int result, QString *text)
{
    whenOpen("MessageBox", [result, text](QWidget *box) {
        if (text != nullptr)
            *text = box->findChild<QLabel *>(QStringLiteral("label"))->text();
        const QLatin1String button(result == 1 ? "btn_Ok" : "btn_Cancel");
        QTest::mouseClick(box->findChild<QPushButton *>(button), Qt::LeftButton);
        return true;
    });
}

void typeOnKeyboard(const QString &keys)
{
    for (const QChar character : keys) {
        whenOpen("SoftKeyboard", [character](const QWidget *keyboard) {
            return typeCharacter(keyboard, character);
        });
    }
}

void pressOnKeyboard(const QString &objectName)
{
    whenOpen("SoftKeyboard", [objectName](const QWidget *keyboard) {
        return press(keyboard->findChild<QPushButton *>(objectName));
    });
}

bool dialogsDone()
{
    return hands().done();
}
