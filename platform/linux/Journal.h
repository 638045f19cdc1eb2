// Lines for the journal, which are written to standard error (sd-daemon(3)).
#pragma once

#include <string>

namespace board {

enum class Severity { Error = 3, Warning = 4, Info = 6 }; // syslog(3)

// One line. What is not ASCII in `text` is replaced, control characters too: a single byte that is
// no UTF-8 would hide the whole line from who reads the journal. Any thread.
void journal(Severity severity, const std::string &text);

// A fault that is told when it appears and not again as long as it lasts. Any thread.
class Fault
{
public:
    void tell(const std::string &text);
    // Told by `text` if the fault had been told.
    void mended(const std::string &text);

private:
    bool change(bool isThere);

    bool m_isThere = false;
};

} // namespace board
