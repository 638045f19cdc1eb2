// The Language page of the System group.
#pragma once

#include <QWidget>

#include <memory>

class QPushButton;
class QRadioButton;

namespace Ui {
class Language;
}

// The page only reports what the operator picked; the main window applies it. GUI thread.
class Language : public QWidget
{
    Q_OBJECT

public:
    explicit Language(QWidget *parent = nullptr);
    ~Language() override;

    // Checks the radio of a language id; unknown ids check nothing.
    void checkLanguage(int id);

    // Sets the page's texts and style again, after `id` became the language.
    void retranslate(int id);

signals:
    // The operator picked the language of this id, also if it is the current one.
    void sgl_LanguageChange(int id);

private slots:
    void slot_ButtonPressed();
    void slot_RadioPressed();

private:
    static void showChoiceOn(QRadioButton *radio, QPushButton *button);

    std::unique_ptr<Ui::Language> ui;
};
