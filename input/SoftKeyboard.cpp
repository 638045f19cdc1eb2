#include "input/SoftKeyboard.h"

#include "app/look/BoxHelpers.h"
#include "app/look/DismissGuard.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/Theme.h"
#include "app/look/WidgetLook.h"
#include "platform/cos_time.h"
#include "ui_SoftKeyboard.h"

#include <QPainter>

namespace {

constexpr int DEBOUNCE_MS = 150;
constexpr int SHADOW = 3; // pixels, painted around the keyboard
constexpr int SHADOW_ALPHA = 100;
constexpr int KEY_ROWS = 4;
constexpr int LINES_A_GAP = 200; // of the screen, for each pixel between the keys

enum Page { PAGE_LETTERS = 0, PAGE_SYMBOLS = 1, PAGE_NUMBERS = 2 };

constexpr int EYE_AS_IT_IS = -1;

struct ModeLook
{
    bool prompt;
    bool eye;
    bool range;
    Page page;
    QLineEdit::EchoMode echo;
    int eyeClosed;
};

constexpr ModeLook MODE_LOOKS[] = {
    {true, true, false, PAGE_LETTERS, QLineEdit::PasswordEchoOnEdit, 1},
    {false, false, true, PAGE_NUMBERS, QLineEdit::Normal, 0},
    {false, false, false, PAGE_LETTERS, QLineEdit::Normal, EYE_AS_IT_IS},
    {false, true, false, PAGE_LETTERS, QLineEdit::PasswordEchoOnEdit, 1},
};
constexpr int MODE_COUNT = static_cast<int>(std::size(MODE_LOOKS));

// A trembling finger presses twice. The last press taken is remembered across all keyboards;
// the first press of the process is measured against itself, and so is never taken.
bool isPressTaken()
{
    const std::int64_t now = COS::CosTime::GetTickCountCos();
    static std::int64_t lastTaken = now;
    if (now - lastTaken < DEBOUNCE_MS)
        return false;
    lastTaken = now;
    return true;
}

} // namespace

SoftKeyboard::SoftKeyboard(QWidget *parent, const QString &text)
    : QDialog(parent), ui(std::make_unique<Ui::SoftKeyboard>()), m_text(text), m_initialText(text)
{
    ui->setupUi(this);
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setModal(true);
    ui->lab_Min->hide();
    ui->lab_Max->hide();
    connectKeys();
    loadIcons();
    tableActions();
    fitToScreen();
    showText();
    setStyleSheet(keyboardStyle(false));
}

SoftKeyboard::~SoftKeyboard() = default;

void SoftKeyboard::connectKeys()
{
    const int iconSide = touchHeight() * 3 / 5;
    for (QPushButton *key : findChildren<QPushButton *>()) {
        key->setIconSize({iconSide, iconSide});
        connect(key, &QPushButton::clicked, this, &SoftKeyboard::slot_Btnclicked);
    }
}

// By way of the pixmap cache: another keyboard soon after need not read them again.
void SoftKeyboard::loadIcons()
{
    const auto load = [](const char *image, std::initializer_list<QPushButton *> keys) {
        const QPixmap picture(imagePath(QString::fromLatin1(image)));
        for (QPushButton *key : keys)
            key->setIcon(QIcon(picture));
    };
    load("Critical.png", {ui->btn_close});
    load("delete.png", {ui->btn_c_del, ui->btn_s_del, ui->btn_n_delete});
    load("space.png", {ui->btn_c_space, ui->btn_s_space});
    load("enter.png", {ui->btn_c_enter, ui->btn_s_enter, ui->btn_n_enter});
}

void SoftKeyboard::tableActions()
{
    m_actions = {
        {ui->btn_c_enter, &SoftKeyboard::enter},
        {ui->btn_s_enter, &SoftKeyboard::enter},
        {ui->btn_n_enter, &SoftKeyboard::enter},
        {ui->btn_c_del, &SoftKeyboard::removeLast},
        {ui->btn_s_del, &SoftKeyboard::removeLast},
        {ui->btn_n_delete, &SoftKeyboard::removeLast},
        {ui->btn_close, &SoftKeyboard::closeUnchanged},
        {ui->btn_c_char, &SoftKeyboard::showSymbols},
        {ui->btn_n_char, &SoftKeyboard::showSymbols},
        {ui->btn_n_abc, &SoftKeyboard::showLetters},
        {ui->btn_s_abc, &SoftKeyboard::showLetters},
        {ui->btn_s_123, &SoftKeyboard::showNumbers},
        {ui->btn_c_123, &SoftKeyboard::showNumbers},
        {ui->btn_s_space, &SoftKeyboard::addSpace},
        {ui->btn_c_space, &SoftKeyboard::addSpace},
        {ui->btn_15, &SoftKeyboard::addAmpersand},
        {ui->btn_Eye, &SoftKeyboard::toggleEye},
        {ui->btn_c_Shift, &SoftKeyboard::toggleShift},
    };
}

// What a finger touches comes first; the rest of a small keyboard is for the entry line.
void SoftKeyboard::fitToScreen()
{
    const int gap = screenSize().height() / LINES_A_GAP;
    for (QLayout *part : findChildren<QLayout *>())
        part->setSpacing(gap);
    layout()->setContentsMargins(SHADOW, SHADOW, SHADOW, SHADOW);
    ui->widget_2->setMinimumHeight(touchHeight());
    ui->stackedWidget->setMinimumHeight(KEY_ROWS * (touchHeight() + gap) - gap);
    for (QLabel *said : {ui->lab_Passwd, static_cast<QLabel *>(ui->lab_Field)})
        said->setContentsMargins(spacing(1), 0, spacing(1), 0);
}

void SoftKeyboard::setCaption(const QString &caption)
{
    ui->lab_Field->setText(caption);
}

void SoftKeyboard::setRange(int min, int max)
{
    m_nMinValue = min;
    m_nMaxValue = max;
    ui->lab_Min->setText(QStringLiteral("MIN:%1").arg(min));
    ui->lab_Max->setText(QStringLiteral("Max:%1").arg(max));
}

void SoftKeyboard::setMaxLength(int length)
{
    m_nMaxLength = length;
}

void SoftKeyboard::setPassword(const QString &password)
{
    m_password = password;
    ui->btn_close->setStyleSheet(closeKeyStyle());
    ui->btn_close->setEnabled(false);
    new DismissGuard(this, true); // owned by the keyboard
}

void SoftKeyboard::setMode(int mode)
{
    if (mode < 0 || mode >= MODE_COUNT)
        return;
    const ModeLook &look = MODE_LOOKS[mode];
    m_nMode = mode;
    if (look.eyeClosed != EYE_AS_IT_IS)
        m_nEyeClosed = look.eyeClosed;
    if (look.eye)
        showEye();
    ui->lab_Passwd->setVisible(look.prompt);
    ui->btn_Eye->setVisible(look.eye);
    ui->lab_Min->setVisible(look.range);
    ui->lab_Max->setVisible(look.range);
    ui->stackedWidget->setCurrentIndex(look.page);
    ui->btn_n_abc->setDisabled(mode == KB_MODE_NUMBER);
    ui->btn_n_char->setDisabled(mode == KB_MODE_NUMBER);
    ui->line_Text->setEchoMode(look.echo);
    if (mode == KB_MODE_NUMBER)
        setStyleSheet(keyboardStyle(true));
    show();
    // Qt uses the sheet that was set first until the dialog is shown.
    if (mode == KB_MODE_NUMBER)
        ui->line_Text->setAlignment(Qt::AlignHCenter);
    for (QPushButton *button : {ui->btn_close, ui->btn_Eye})
        button->setFixedWidth(ui->widget_2->height());
    exec();
}

int SoftKeyboard::getText(QString &out) const
{
    if (m_nAccepted == 0)
        return -1;
    out = m_text;
    return 0;
}

void SoftKeyboard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(themeColour(QStringLiteral("shadow"), SHADOW_ALPHA));
    for (int i = 2; i >= 0; --i)
        painter.drawRoundedRect(i, i, width() - 2 * i, height() - 2 * i, 2.0, 2.0);
}

void SoftKeyboard::slot_Btnclicked()
{
    if (!isPressTaken())
        return;
    keyClick();
    const Action action = m_actions.value(sender(), &SoftKeyboard::addCharacter);
    (this->*action)();
}

void SoftKeyboard::showText()
{
    ui->line_Text->setText(m_text);
}

void SoftKeyboard::showEye()
{
    const QString image =
        m_nEyeClosed == 1 ? QStringLiteral("eyeHide.png") : QStringLiteral("eyeShow.png");
    setStyleOnce(ui->btn_Eye, iconStyle(image));
}

void SoftKeyboard::enter()
{
    switch (m_nMode) {
    case KB_MODE_PASSWORD:
        return enterPassword();
    case KB_MODE_NUMBER:
        return enterNumber();
    case KB_MODE_TEXT:
        return enterText();
    default:
        return enterHiddenText();
    }
}

void SoftKeyboard::enterPassword()
{
    if (!m_password)
        return;
    if (ui->line_Text->text() == *m_password)
        hide();
    else
        runBox(BOX_CRITICAL, this, tr("Password error!"));
}

void SoftKeyboard::enterNumber()
{
    if (isOutOfRange())
        return;
    if (ui->line_Text->text() == m_initialText) {
        hide();
        return;
    }
    // Only the number pad's Enter makes "05" a 5.
    finish(sender() == ui->btn_n_enter ? QString::number(m_text.toInt()) : m_text);
}

// A text that is no number, or one too long, is refused rather than taken for a 0.
bool SoftKeyboard::isOutOfRange() const
{
    bool isNumber = false;
    const qlonglong value = m_text.toLongLong(&isNumber);
    return !isNumber || value > m_nMaxValue || value < m_nMinValue;
}

void SoftKeyboard::finish(const QString &text)
{
    emit Sgl_InputText(text);
    m_nAccepted = 1;
    hide();
}

void SoftKeyboard::enterText()
{
    emit Sgl_InputText(ui->line_Text->text());
    hide();
}

void SoftKeyboard::enterHiddenText()
{
    const QString text = ui->line_Text->text();
    emit Sgl_InputText(text);
    m_nAccepted = text == m_initialText ? 0 : 1;
    hide();
}

void SoftKeyboard::removeLast()
{
    if (m_text.isEmpty())
        return;
    m_text.chop(std::as_const(m_text).back().isLowSurrogate() ? 2 : 1);
    showText();
}

void SoftKeyboard::closeUnchanged()
{
    m_nAccepted = 0;
    hide();
}

void SoftKeyboard::showLetters()
{
    ui->stackedWidget->setCurrentIndex(PAGE_LETTERS);
}

void SoftKeyboard::showSymbols()
{
    ui->stackedWidget->setCurrentIndex(PAGE_SYMBOLS);
}

void SoftKeyboard::showNumbers()
{
    ui->stackedWidget->setCurrentIndex(PAGE_NUMBERS);
}

void SoftKeyboard::addSpace()
{
    appendWithinLength(QStringLiteral(" "));
}

// The key's label is "&&", a button's way to show one.
void SoftKeyboard::addAmpersand()
{
    appendWithinLength(QStringLiteral("&"));
}

void SoftKeyboard::toggleEye()
{
    m_nEyeClosed = m_nEyeClosed == 1 ? 0 : 1;
    ui->line_Text->setEchoMode(m_nEyeClosed == 1 ? QLineEdit::PasswordEchoOnEdit
                                                 : QLineEdit::Normal);
    showEye();
}

// The key's label names the state that it switches to.
void SoftKeyboard::toggleShift()
{
    const bool upper = ui->btn_c_Shift->text() == QLatin1String("CAP");
    ui->btn_c_Shift->setText(upper ? QStringLiteral("cas") : QStringLiteral("CAP"));
    for (QPushButton *key : ui->page->findChildren<QPushButton *>()) {
        const QString label = key->text();
        if (label.size() == 1)
            key->setText(upper ? label.toUpper() : label.toLower());
    }
}

void SoftKeyboard::addCharacter()
{
    const QString label = static_cast<QPushButton *>(sender())->text();
    if (m_bFirstKeyClears)
        m_text.clear();
    m_bFirstKeyClears = false;
    if (m_nEyeClosed == 1) { // the eye alone decides, whatever the mode
        appendWithinLength(label);
        return;
    }
    const QString zero = QStringLiteral("0");
    const bool secondZero = m_nMode == KB_MODE_NUMBER && m_text == zero && label == zero;
    if (!secondZero)
        m_text += label;
    showText();
}

void SoftKeyboard::appendWithinLength(const QString &added)
{
    if (m_nMaxLength <= m_text.size())
        return;
    m_text += added;
    showText();
}
