#pragma once

#include "platform/sim/Json.h"
#include "platform/sim/UpdateInstall.h"
#include "platform/sim/UpdateReply.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace sim {

struct UpdateAnswer
{
    bool replies = false;
    bool dies = false; // as update.dieAt orders
    UpdateStatus status = {};
};

// What the update service does about a request; it knows nothing of sockets. One thread. The panel
// is not locked: files are read and written here.
class UpdateDesk
{
public:
    // `update` is that part of the panel's state, without the requests.
    UpdateAnswer answer(const Json &update, int command, const std::string &payload);
    // An install under way is given up.
    void abandon() { m_install.reset(); }

private:
    UpdateAnswer start(const Json &update, const std::string &path);
    UpdateAnswer poll(const Json &update);
    UpdateAnswer advance(int percent);
    UpdateAnswer finish(const Json &update);
    std::size_t nextStep(const Json &update);

    std::optional<UpdateInstall> m_install;
    std::string m_model; // and the rest: of the install
    std::chrono::steady_clock::time_point m_started;
    std::size_t m_polls = 0;
};

} // namespace sim
