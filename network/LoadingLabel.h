// A label with the loading animation: of the scan, and of the network that is being joined.
#pragma once

#include <QLabel>

class QMovie;

// The animation is made when it is first needed, and runs only while the label is seen. Its side
// is the label's height. GUI thread.
class LoadingLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

public slots:
    void start();
    // Leaves the label empty.
    void stop();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QMovie *m_pMovie = nullptr;
    bool m_bLoading = false;
};
