// Linked or preloaded into a program as it is packaged, has it tell when its first frame is there.

#include "bench/FirstFrame.h"

#include <QCoreApplication>

namespace {

void watchFirstFrame()
{
    FirstFrame::watch();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchFirstFrame)
