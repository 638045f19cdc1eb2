// Tells whoever started this program when its first frame has been painted.
#pragma once

#include <QObject>

class QEvent;

// Watches the whole application and, when its first window has been painted and the event loop
// runs again, writes one byte to the file descriptor named by the environment variable
// BENCH_READY_FD. Without the variable it does nothing. GUI thread.
class FirstFrame : public QObject
{
    Q_OBJECT

public:
    // Owned by the application, which must exist.
    static void watch();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit FirstFrame(QObject *parent, int fd) : QObject(parent), m_fd(fd) {}

    int m_fd;
};
