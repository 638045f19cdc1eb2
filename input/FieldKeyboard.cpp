#include "input/FieldKeyboard.h"

#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"

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

} // namespace

KeyboardRequest numberRequest(QWidget *page, QLineEdit *field, int min, int max)
{
    KeyboardRequest request;
    request.page = page;
    request.field = field;
    request.mode = KB_MODE_NUMBER;
    request.min = min;
    request.max = max;
    return request;
}

KeyboardRequest textRequest(QWidget *page, QLineEdit *field, int mode, int maxLength)
{
    KeyboardRequest request;
    request.page = page;
    request.field = field;
    request.mode = mode;
    request.maxLength = maxLength;
    return request;
}

bool editWithKeyboard(const KeyboardRequest &request, QString *entered)
{
    keyClick();
    QLineEdit *field = request.field;
    SoftKeyboard keyboard(request.page, field == nullptr ? QString() : field->text());
    place(&keyboard, request);
    if (field != nullptr)
        QObject::connect(&keyboard, &SoftKeyboard::Sgl_InputText, field, &QLineEdit::setText);
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
