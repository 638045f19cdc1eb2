// The update service's answers to requests.
#pragma once

#include "platform/posix/UpdateWire.h"
#include "services/update/Project.h"
#include "services/update/Settings.h"
#include "services/update/Work.h"

#include <atomic>
#include <functional>
#include <string>

namespace updates {

// Runs in the event loop's thread, which it never keeps waiting.
class Desk
{
public:
    using Reply = std::function<void(const os::UpdateStatus &)>;

    Desk(sd_event *event, Settings settings);
    // Ends an install that is under way; what it has unpacked is removed.
    ~Desk();
    Desk(const Desk &) = delete;
    Desk &operator=(const Desk &) = delete;

    // Calls `reply` once, at once or later; or never: for a command that is none, for a second
    // install, and for a check while one is waiting for its stick.
    void answer(int command, const std::string &payload, const Reply &reply);

private:
    void check(const std::string &path, const Reply &reply);
    void start(const std::string &path, const Reply &reply);
    void install(const Checked &checked);
    int installChecked(const Checked &checked, std::string &why);
    void end(int error, const std::string &why);
    os::UpdateStatus status() const;

    Settings m_settings;
    os::UpdateStatus m_result{0, 0, os::UPDATE_IDLE, {}}; // of the last install
    // Of the install under way:
    std::string m_name;
    std::string m_model;
    std::atomic<int> m_percent{0};
    std::atomic<bool> m_isStopping{false};
    Work m_telling; // what became of the last firmware. These last: their threads use the others
    Work m_checking;
    Work m_install;
};

} // namespace updates
