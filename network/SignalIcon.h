// The signal icons of the wireless links, as names of images.
#pragma once

#include "platform/net.h"

#include <QString>

#include <optional>

// Of a Wi-Fi network, by its security and its level, which must be one.
QString wifiSignalIcon(const netT::stApInfo_tag &accessPoint);

// The bars of a 4G signal, 0 to 4, for a quality as +CSQ gives it; nothing for one that a modem
// does not report.
std::optional<int> modemBars(int csq);

// Of the 4G modem.
QString modemSignalIcon(int bars);
