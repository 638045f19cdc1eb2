#include "system/Language.h"

#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "system/LanguageSettings.h"
#include "ui_Language.h"

Language::Language(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::Language>())
{
    ui->setupUi(this);
    showChoiceOn(ui->radio_1, ui->CHBtn);
    showChoiceOn(ui->radio_2, ui->ENBtn);
}

Language::~Language() = default;

// The button beside a radio shows the choice too: it is the larger target.
void Language::showChoiceOn(QRadioButton *radio, QPushButton *button)
{
    radio->setMinimumSize(touchHeight(), touchHeight());
    connect(radio, &QRadioButton::toggled, button,
            [button](bool chosen) { markWidget(button, "chosen", chosen); });
}

void Language::checkLanguage(int id)
{
    if (id == LANGUAGE_CHINESE)
        ui->radio_1->setChecked(true);
    else if (id == LANGUAGE_ENGLISH)
        ui->radio_2->setChecked(true);
}

void Language::retranslate(int id)
{
    ui->retranslateUi(this);
    setStyleWhenSeen(this, radioStyle());
    checkLanguage(id);
}

void Language::slot_ButtonPressed()
{
    keyClick();
    const int id = sender() == ui->CHBtn ? LANGUAGE_CHINESE : LANGUAGE_ENGLISH;
    checkLanguage(id);
    emit sgl_LanguageChange(id);
}

void Language::slot_RadioPressed()
{
    keyClick();
    emit sgl_LanguageChange(sender() == ui->radio_1 ? LANGUAGE_CHINESE : LANGUAGE_ENGLISH);
}
