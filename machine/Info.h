// The device information page of the About group.
#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class Info;
}

// Shows who this panel is, read once: model, serial number, machine and product identifier, and a
// QR code with which a phone binds the panel to the remote service. Nothing of it if any but the
// product identifier cannot be read. GUI thread.
class Info : public QWidget
{
    Q_OBJECT

public:
    explicit Info(QWidget *parent = nullptr);
    ~Info() override;

    // Sets the page's captions and style again, after a language change.
    void retranslate();

private:
    void showMachine();
    void showCode(const QString &text);

    std::unique_ptr<Ui::Info> ui;
    bool m_bProductUnknown = false;
};
