// What the platform calls: its threads reach the main window only through these.
#pragma once

#include "platform/board.h"
#include "platform/net.h"

#include <string>
#include <vector>

// Hot-plug, on the media thread. `context` is the MainWin; -1 without one and after
// stopCallbacks(), else 0.
int OnUdiskAdd(const PLATFORM::tagDEV_INFO_T &info, void *context);
int OnUdiskRemove(const PLATFORM::tagDEV_INFO_T &info, void *context);

// The network service's records, on its client's thread. `context` is the MainWin; -1 without
// one and after stopCallbacks(), else 0.
int getAllNetInfo(std::vector<netT::stAllNetInfo_tag> &list, void *context);

// The cloud's messages, on the service's thread. `context` is the MainWin. Nothing is asked of the
// panel that way; 0.
int OnCloudMessage(const std::string &topic, const std::string &message, void *context);

// From now on the callbacks above leave the window alone. Waits at most `waitMs` milliseconds for
// those that are under way; returns whether all have returned. GUI thread, which must go on
// handling events meanwhile: call it again until it is true.
bool stopCallbacks(int waitMs);

// Periodic tasks, on the rate timer's thread. Both return 0.
// Plays the key clicks that were asked for.
int Buzzer_Thread(void *argument);
// Checks links and cloud; `window` is the MainWin.
int CheckTarnicloud_Thread(void *window);
