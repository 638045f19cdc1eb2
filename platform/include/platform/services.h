// Small services of the panel that the shell of the program uses.
#pragma once

#include <string>

namespace dsl {

// The program's connection to the panel's notify service; open as long as the object lives.
// Construction never fails and never blocks: without the service it stays unconnected. Any thread,
// one at a time.
class CNotifyClient
{
public:
    CNotifyClient();
    ~CNotifyClient();
    CNotifyClient(const CNotifyClient &) = delete;
    CNotifyClient &operator=(const CNotifyClient &) = delete;
};

} // namespace dsl

namespace cbl {

// The MD5 digest (RFC 1321) of the bytes of `input` as 32 lower-case hexadecimal digits.
// Returns 0. Any thread.
int md5String(const std::string &input, std::string &output);

} // namespace cbl
