// The one modal question or notice of the program.
#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class MessageBox;
}

// Types of the box. Any higher number is a notice without an icon.
enum MessageBoxType {
    BOX_QUESTION = 0, // OK and Cancel; the others have OK alone
    BOX_INFORMATION = 1,
    BOX_WARNING = 2,
    BOX_CRITICAL = 3,
};

// exec() gives 1 for OK and 0 for Cancel. The caller sizes and places the box. GUI thread.
class MessageBox : public QDialog
{
    Q_OBJECT

public:
    MessageBox(int type, QWidget *parent);
    ~MessageBox() override;

    // `text` is translated already, and shown as plain text.
    void setText(const QString &text);

    // The shares of the height of title strip, text and buttons; 1, 4, 1 without this.
    void setStretch(int title, int text, int buttons);

private slots:
    void slot_BtnOkPressed();
    void slot_BtnCancelPressed();

private:
    void applyType(int type);

    std::unique_ptr<Ui::MessageBox> ui;
};
