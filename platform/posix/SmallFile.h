// Small files of the kernel, the device tree and the panel's maker.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace board {

// The content of `path` (as it is, see panelPath()); nothing if it cannot be read or holds more
// than 64 KiB. Never waits, whatever kind of file it is. Any thread.
std::optional<std::string> readFile(const std::string &path);

// The same with blanks, line ends and zero bytes taken off both ends; empty if it cannot be read.
std::string readFact(const std::string &path);

// `text` without blanks, line ends and zero bytes at both ends.
std::string trimmed(const std::string &text);

// Writes `text` into the existing file `path` with one write(2), as sysfs needs it. False if it
// refuses. Any thread.
bool writeFile(const std::string &path, const std::string &text);

// The names in `directory`, sorted; empty if it cannot be read. Any thread.
std::vector<std::string> namesIn(const std::string &directory);

// A decimal number, whole; nothing if `text` is none.
std::optional<int> numberIn(const std::string &text);

} // namespace board
