// A read-only line whose text may be longer than the line.
#pragma once

#include <QLineEdit>

// Shows its text elided to its width, and fits it again when that or the font changes. A hidden
// line has the whole text: it is measured when it is shown. GUI thread.
class ElidedLine : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;

    void setFullText(const QString &text);

protected:
    bool event(QEvent *event) override;

private:
    void fit();

    QString m_text;
};
