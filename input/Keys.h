// What the keyboard's form is made of: push buttons and pages of them that cost little to show.
// To style sheets and to everyone outside they are QPushButton and QWidget. GUI thread.
#pragma once

#include <QEvent>
#include <QPushButton>

// A key fills its cell, whatever its label, and is no concern of a plugged-in keyboard.
class KeyButton : public QPushButton
{
public:
    explicit KeyButton(QWidget *parent) : QPushButton(parent)
    {
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
        setFocusPolicy(Qt::NoFocus);
        setAutoDefault(false);
    }

protected:
    // A push button works out its margins anew whenever a style sheet comes or changes. A key has
    // none, and for seventy of them that is a quarter of the keyboard's construction.
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::StyleChange)
            return QPushButton::event(event);
        changeEvent(event);
        return true;
    }
};

// A page takes whatever room it is given, so that the keys of a hidden page are not measured.
class KeyPage : public QWidget
{
public:
    using QWidget::QWidget;

    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }

    // A stack shows its first page as soon as it has one, which would style all keys of the page
    // before the keyboard's own style is there. Not being hidden, the page comes with the stack.
    void setVisible(bool visible) override
    {
        const bool comesWithStack = !isHidden() && !parentWidget()->isVisible();
        if (!visible || !comesWithStack)
            QWidget::setVisible(visible);
    }
};
