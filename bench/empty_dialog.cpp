// The limit that the panel's start is measured against: an empty dialog of the panel's size.

#include "bench/FirstFrame.h"

#include <QApplication>
#include <QDialog>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QDialog dialog;
    dialog.setFixedSize(1024, 600);
    dialog.show();
    FirstFrame::watch();
    return QApplication::exec();
}
