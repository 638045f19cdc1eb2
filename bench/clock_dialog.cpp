// The yardstick of an idle panel: an empty dialog that repaints a clock once a second.

#include "bench/FirstFrame.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTime>
#include <QTimer>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QDialog dialog;
    dialog.setFixedSize(1024, 600);
    QLabel clock(&dialog);
    clock.resize(200, 50);
    QTimer second;
    QObject::connect(&second, &QTimer::timeout, &clock, [&clock] {
        clock.setText(QTime::currentTime().toString(QStringLiteral("hh:mm:ss")));
    });
    second.start(1000);
    dialog.show();
    FirstFrame::watch();
    return QApplication::exec();
}
