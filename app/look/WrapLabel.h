// A label for texts of any length and origin.
#pragma once

#include <QLabel>

// Shows plain text, wrapped at words and, where one is wider than the label, inside it; QLabel
// would grow beyond the screen with a file name of 255 letters. Lines that find no room are elided.
// GUI thread.
class WrapLabel : public QLabel
{
public:
    explicit WrapLabel(QWidget *parent = nullptr);

    // How many lines the label is high at least; 2 without this.
    void setLeastLines(int lines);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_nLeastLines = 2;
};
