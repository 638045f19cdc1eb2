// A label for names of any length.
#pragma once

#include <QLabel>
#include <QStaticText>

// Shows its text on one line as plain text, elided where it is wider than the label; QLabel would
// push its neighbours away. The line is laid out once, since rows of a list are painted often. GUI
// thread.
class ElidedLabel : public QLabel
{
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

    // Whether the text stands on a dark chip of its own length, for a colour that cannot be read
    // on white.
    void setChip(bool on);
    // Whether the text is indented as one on a chip is.
    void setPadded(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void layOut();
    QRect room() const; // for the text

    QStaticText m_line;
    QString m_text;   // as laid out
    int m_nWidth = 0; // for which it was laid out
    bool m_bChip = false;
    bool m_bPadded = false;
};
