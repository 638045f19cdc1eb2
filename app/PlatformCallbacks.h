// What the platform calls: its threads reach the main window only through these.
#pragma once

#include "platform/board.h"
#include "platform/net.h"

#include <string>
#include <vector>

// Hot-plug, on the media thread. `context` is the MainWin; -1 without one, else 0.
int OnUdiskAdd(const PLATFORM::tagDEV_INFO_T &info, void *context);
int OnUdiskRemove(const PLATFORM::tagDEV_INFO_T &info, void *context);

// The network service's records, on its client's thread. `context` is the MainWin; -1 without
// one, else 0.
int getAllNetInfo(std::vector<netT::stAllNetInfo_tag> &list, void *context);

// The cloud's messages, on the service's thread. `context` is the MainWin. Nothing is asked of the
// panel that way; 0.
int OnCloudMessage(const std::string &topic, const std::string &message, void *context);

// Periodic tasks, on the rate timer's thread. Both return 0.
// Plays the key clicks that were asked for.
int Buzzer_Thread(void *argument);
// Checks links and cloud; `window` is the MainWin.
int CheckTarnicloud_Thread(void *window);
