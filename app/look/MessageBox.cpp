#include "app/look/MessageBox.h"

#include "app/look/DismissGuard.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "ui_MessageBox.h"

namespace {

const char *const ICONS[] = {"Question.png", "Information.png", "Warning.png", "Critical.png"};
constexpr int ICON_COUNT = static_cast<int>(std::size(ICONS));

} // namespace

MessageBox::MessageBox(int type, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::MessageBox>())
{
    ui->setupUi(this);
    growLayouts(this);
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    applyType(type);
    const int buttonHeight = screenSize().height() / 8;
    ui->lab_Img->setFixedSize(buttonHeight, buttonHeight);
    ui->btn_Ok->setMinimumHeight(buttonHeight);
    ui->btn_Cancel->setMinimumHeight(buttonHeight);
    setStyleSheet(messageBoxStyle());
    connect(ui->btn_Ok, &QPushButton::clicked, this, &MessageBox::slot_BtnOkPressed);
    connect(ui->btn_Cancel, &QPushButton::clicked, this, &MessageBox::slot_BtnCancelPressed);
}

MessageBox::~MessageBox() = default;

void MessageBox::setText(const QString &text)
{
    ui->label->setText(text);
}

void MessageBox::setStretch(int title, int text, int buttons)
{
    ui->verticalLayout->setStretch(0, title);
    ui->verticalLayout->setStretch(1, text);
    ui->verticalLayout->setStretch(2, buttons);
}

void MessageBox::applyType(int type)
{
    const bool question = type == BOX_QUESTION;
    ui->lab_2->setVisible(question);
    ui->btn_Cancel->setVisible(question);
    if (!question) { // OK stands to the right, and nothing else ends the box
        new DismissGuard(this, true);
        ui->buttonRow->setStretch(0, 8);
        ui->buttonRow->setStretch(1, 3);
        ui->buttonRow->setStretch(2, 1);
    }
    if (type >= 0 && type < ICON_COUNT) {
        ui->lab_Img->setStyleSheet(borderImageStyle(QString::fromLatin1(ICONS[type])));
    }
}

void MessageBox::slot_BtnOkPressed()
{
    keyClick();
    accept();
}

void MessageBox::slot_BtnCancelPressed()
{
    keyClick();
    reject();
}
