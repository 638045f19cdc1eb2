// The clock in the panel's time zone.
#pragma once

#include "services/words/Registers.h"

#include <ctime>
#include <optional>
#include <string>

namespace words {

// The value of TZ that the zone file gives; the program's first zone, GMT-08:00, where the file is
// missing or its value is none that tzset(3) takes for a zone of its own or of the zone folder.
std::string readZone(const std::string &path);

// Year, month, day, hour, minute and second of `time` in `zone`. These two change the process's TZ:
// one thread only.
std::vector<Word> clockWords(std::time_t time, const std::string &zone);

// The other way round; nothing if there is no such moment between the years 2000 and 2037.
std::optional<std::time_t> clockTime(const std::vector<Word> &words, const std::string &zone);

} // namespace words
