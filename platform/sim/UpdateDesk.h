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
    os::UpdateStatus status = {};
};

// The update service's answers to requests, without the socket. One thread. The panel is not
// locked: files are read and written here.
class UpdateDesk
{
public:
    // `update` is that part of the panel's state, without the requests.
    UpdateAnswer answer(const Json &update, int command, const std::string &payload);
    // Gives up a running install, and forgets the result of the last one.
    void abandon();

private:
    UpdateAnswer start(const Json &update, const std::string &path);
    UpdateAnswer poll(const Json &update);
    UpdateAnswer advance(int percent);
    UpdateAnswer finish(const Json &update);
    std::size_t nextStep(const Json &update);

    std::optional<UpdateInstall> m_install;
    os::UpdateStatus m_result{0, 0, os::UPDATE_IDLE, {}}; // of the last one
    // Of the install:
    std::string m_model;
    std::chrono::steady_clock::time_point m_started;
    std::size_t m_polls = 0;
};

} // namespace sim
