// Names that come from outside: files of a U-disk, networks.
#pragma once

#include <QString>

#include <string>

// `bytes` as a person can read them on one line: UTF-8 where it is that, with control characters
// as "\x0A"; else every byte beyond ASCII in the same way.
QString shownBytes(const std::string &bytes);
