// A label for names of any length.
#pragma once

#include <QLabel>

// Shows its text on one line as plain text, elided where it is wider than the label; QLabel would
// push its neighbours away. GUI thread.
class ElidedLabel : public QLabel
{
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
