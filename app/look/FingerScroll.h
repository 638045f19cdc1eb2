// Lists that follow the finger.
#pragma once

#include <QObject>
#include <QPersistentModelIndex>

class QAbstractItemView;
class QAbstractScrollArea;
class QMouseEvent;

// Scrolls an area by a finger that slides over it, as far as the finger goes. A touch that turns
// into a slide clicks no row and leaves the current one, even where there is nothing to scroll. GUI
// thread.
class FingerScroll : public QObject
{
    Q_OBJECT

public:
    // Watches `area` and is owned by it.
    explicit FingerScroll(QAbstractScrollArea *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Touch { None, Rests, Slides };

    void press(const QMouseEvent &event);
    bool move(const QMouseEvent &event);
    bool release();
    void letGo();

    QAbstractScrollArea *m_pArea;
    QAbstractItemView *m_pView; // m_pArea if it has rows, else null
    Touch m_touch = Touch::None;
    int m_nFrom = 0;  // where the slide began, in pixels of the screen
    int m_nValue = 0; // of the scroll bar when the slide began
    QPersistentModelIndex m_current;
};
