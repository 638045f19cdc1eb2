#include "platform/linux/Journal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace board {
namespace {

std::mutex &faults()
{
    static std::mutex &mutex = *new std::mutex;
    return mutex;
}

// Only the journal takes the severity off the line, systemd.exec(5).
std::string prefix(Severity severity)
{
    if (std::getenv("JOURNAL_STREAM") == nullptr) // NOLINT(concurrency-mt-unsafe): never changed
        return "sysset: ";
    return "<" + std::to_string(static_cast<int>(severity)) + ">";
}

} // namespace

void journal(Severity severity, const std::string &text)
{
    std::string line = text;
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c >= 0x7f; }, '?');
    std::fputs((prefix(severity) + line + "\n").c_str(), stderr);
}

bool Fault::change(bool isThere)
{
    const std::lock_guard lock(faults());
    const bool changes = m_isThere != isThere;
    m_isThere = isThere;
    return changes;
}

void Fault::tell(const std::string &text)
{
    if (change(true))
        journal(Severity::Warning, text);
}

void Fault::mended(const std::string &text)
{
    if (change(false))
        journal(Severity::Info, text);
}

} // namespace board
