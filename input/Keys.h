// What the keyboard's form is made of: push buttons and pages of them that cost little to show.
// To style sheets and to everyone outside they are QPushButton and QWidget. GUI thread.
#pragma once

#include <QPushButton>

class QStyleOptionButton;

// A key fills its cell, whatever its label, and is no concern of a plugged-in keyboard.
class KeyButton : public QPushButton
{
public:
    explicit KeyButton(QWidget *parent);

    // Applies the style sheet, which a key on a KeyPage puts off until its page is shown.
    void polish();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isOnPage() const;
    QPixmap ground(const QStyleOptionButton &option) const;
};

// A page takes whatever room it is given, so that the keys of a hidden page are not measured, and
// styles its keys when it is first shown.
class KeyPage : public QWidget
{
public:
    using QWidget::QWidget;

    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
    void setVisible(bool visible) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    bool m_bPolished = false;
};
