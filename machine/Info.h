// The device information page of the About group.
#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class Info;
}

// Shows who this panel is, read once: model, serial number, machine and product identifier, and a
// QR code to bind the panel to the remote service with a phone. It shows none of them unless the
// panel knows itself. GUI thread.
class Info : public QWidget
{
    Q_OBJECT

public:
    explicit Info(QWidget *parent = nullptr);
    ~Info() override;

    // Says the page's captions and takes its style again, after a language change.
    void retranslate();

private:
    void showMachine();
    void showCode(const QString &text);

    std::unique_ptr<Ui::Info> ui;
    bool m_bProductUnknown = false;
};
