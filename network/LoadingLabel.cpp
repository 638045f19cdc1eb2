#include "network/LoadingLabel.h"

#include "app/look/WidgetLook.h"

#include <QMovie>

void LoadingLabel::start()
{
    if (m_pMovie == nullptr) {
        m_pMovie = new QMovie(loadingMoviePath(), QByteArray(), this);
        m_pMovie->setScaledSize({minimumHeight(), minimumHeight()});
    }
    m_bLoading = true;
    setMovie(m_pMovie);
    if (isVisible())
        m_pMovie->start();
}

void LoadingLabel::stop()
{
    m_bLoading = false;
    if (m_pMovie != nullptr)
        m_pMovie->stop();
    clear();
}

void LoadingLabel::showEvent(QShowEvent *event)
{
    if (m_bLoading)
        m_pMovie->start();
    QLabel::showEvent(event);
}

void LoadingLabel::hideEvent(QHideEvent *event)
{
    if (m_bLoading)
        m_pMovie->stop();
    QLabel::hideEvent(event);
}
