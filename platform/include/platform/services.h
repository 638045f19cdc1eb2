// Small services of the panel that the shell of the program uses.
#pragma once

#include <string>
#include <vector>

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

// One extension or driver of the panel, as the version service names it. Texts are bytes.
struct VersionEntry_T
{
    std::string name;
    std::string version;
};

// Asks the panel's version service what else is installed. Returns 0 or more; negative, with `list`
// untouched, if it refuses (-1) or has not answered within `timeoutMs` milliseconds (-2), which the
// call never waits beyond. Any thread.
int getVersionList(std::vector<VersionEntry_T> &list, unsigned int timeoutMs);

} // namespace dsl

namespace cbl {

// The MD5 digest (RFC 1321) of the bytes of `input` as 32 lower-case hexadecimal digits.
// Returns 0. Any thread.
int md5String(const std::string &input, std::string &output);

} // namespace cbl
