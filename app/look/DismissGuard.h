// Keeps a window that must stay from being dismissed by a plugged-in keyboard.
#pragma once

#include <QObject>

// An event filter for one dialog: the Escape key, which closes every QDialog, has no effect.
// With `alsoClose`, neither has a close request of the window system. GUI thread.
class DismissGuard : public QObject
{
    Q_OBJECT

public:
    // Guards `window` and is owned by it.
    DismissGuard(QWidget *window, bool alsoClose);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool m_bAlsoClose;
};
