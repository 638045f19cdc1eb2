// The animation that says "asked for, not yet done".
#pragma once

#include <QMovie>

class QLabel;

// Shows the loading animation on one label and a blank stand-in on another, never both. The
// animation's side follows the screen. GUI thread.
class PendingMark
{
public:
    // Both labels must outlive the mark. Starts hidden.
    PendingMark(QLabel *moving, QLabel *blank);

    void start();
    void stop();

private:
    void show(bool pending);

    QLabel *m_pMoving;
    QLabel *m_pBlank;
    QMovie m_movie;
};
