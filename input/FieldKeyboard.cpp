#include "input/FieldKeyboard.h"

#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"

#include <QLabel>
#include <QLineEdit>

namespace {

constexpr int GATE_MAX_LENGTH = 15;

void place(SoftKeyboard *keyboard, const KeyboardRequest &request)
{
    const QSize page = request.page->size();
    const QSize whole = request.sizeOf == KeyboardSizeOf::Page ? page : screenSize();
    const QSize offset = fractionOf(page, request.xFactor, request.yFactor);
    placeOverPage(keyboard, fractionOf(whole, request.widthFactor, request.heightFactor),
                  request.page, {offset.width(), offset.height()});
}

// Shows on the page which field the keyboard is for.
class EditedMark
{
public:
    explicit EditedMark(QLineEdit *field) : m_pField(field) { set(true); }
    ~EditedMark() { set(false); }
    Q_DISABLE_COPY(EditedMark)

private:
    void set(bool edited)
    {
        if (m_pField != nullptr)
            markWidget(m_pField, "edited", edited);
    }

    QLineEdit *m_pField;
};

KeyboardRequest fieldRequest(QWidget *page, QLineEdit *field, int mode)
{
    KeyboardRequest request;
    request.page = page;
    request.field = field;
    request.caption = captionOf(field);
    request.mode = mode;
    return request;
}

} // namespace

QString captionOf(const QLineEdit *field)
{
    if (field == nullptr)
        return {};
    for (const QLabel *label : field->window()->findChildren<QLabel *>()) {
        if (label->buddy() != field)
            continue;
        const QString text = label->text();
        const bool colon = text.endsWith(QLatin1Char(':')) || text.endsWith(QChar(0xff1a));
        return text.chopped(colon ? 1 : 0);
    }
    return {};
}

KeyboardRequest numberRequest(QWidget *page, QLineEdit *field, int min, int max)
{
    KeyboardRequest request = fieldRequest(page, field, KB_MODE_NUMBER);
    request.min = min;
    request.max = max;
    return request;
}

KeyboardRequest textRequest(QWidget *page, QLineEdit *field, int mode, int maxLength)
{
    KeyboardRequest request = fieldRequest(page, field, mode);
    request.maxLength = maxLength;
    return request;
}

bool editWithKeyboard(const KeyboardRequest &request, QString *entered)
{
    keyClick();
    QLineEdit *field = request.field;
    const EditedMark mark(field);
    SoftKeyboard keyboard(request.page, field == nullptr ? QString() : field->text());
    place(&keyboard, request);
    if (field != nullptr)
        QObject::connect(&keyboard, &SoftKeyboard::Sgl_InputText, field, &QLineEdit::setText);
    keyboard.setCaption(request.caption);
    keyboard.setRange(request.min, request.max);
    keyboard.setMaxLength(request.maxLength);
    keyboard.setMode(request.mode);
    QString text;
    const bool accepted = keyboard.getText(text) == 0;
    if (accepted && entered != nullptr)
        *entered = text;
    return accepted;
}

void runPasswordGate(QWidget *window, const QString &password)
{
    SoftKeyboard gate(window, QString());
    gate.setMaxLength(GATE_MAX_LENGTH);
    gate.setPassword(password);
    const QSize corner = fractionOf(screenSize(), 0.15, 0.1);
    placeOnScreen(&gate, fractionOf(screenSize(), 0.7, 0.8), {corner.width(), corner.height()});
    gate.setMode(KB_MODE_PASSWORD);
}
