// Lines for the journal, on standard error with the priority in front (sd-daemon(3)).
#pragma once

#include <string>

namespace service {

void say(const std::string &line);  // information
void warn(const std::string &line); // something does not work

// The text of an errno. Any thread.
std::string reason(int error);

// Something that may fail again and again: said when it begins to fail, and when it works again.
class Trouble
{
public:
    // `what` is the beginning of both lines.
    explicit Trouble(std::string what) : m_what(std::move(what)) {}

    // Takes the outcome of an attempt: 0, or its errno.
    void set(int error);

private:
    std::string m_what;
    bool m_bFailing = false;
};

} // namespace service
