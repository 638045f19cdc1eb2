// A text as a QR code.
#pragma once

#include <QString>
#include <QWidget>

// Draws the code over a square of its shorter side at the top left, the rest white; a text that no
// code can hold makes it red. The code goes to the widget's edges: a reader also needs about four
// of its modules of white around it, which is for the widget's surroundings to give. GUI thread.
class QRWidget : public QWidget
{
    Q_OBJECT

public:
    explicit QRWidget(QWidget *parent = nullptr);

    void setQRData(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_text;
};
