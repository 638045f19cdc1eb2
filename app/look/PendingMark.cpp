#include "app/look/PendingMark.h"

#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"

#include <QLabel>

PendingMark::PendingMark(QLabel *moving, QLabel *blank)
    : m_pMoving(moving), m_pBlank(blank), m_movie(loadingMoviePath())
{
    const int side = screenSize().height() / 12;
    m_movie.setScaledSize({side, side});
    m_pMoving->setMovie(&m_movie);
    show(false);
}

void PendingMark::start()
{
    m_movie.start();
    show(true);
}

void PendingMark::stop()
{
    m_movie.stop();
    show(false);
}

void PendingMark::show(bool pending)
{
    m_pMoving->setVisible(pending);
    m_pBlank->setVisible(!pending);
}
