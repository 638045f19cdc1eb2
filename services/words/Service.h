// The words service: what the clients read and write, and what follows from it.
#pragma once

#include "services/words/PanelScreen.h"
#include "services/words/Saver.h"
#include "services/words/Server.h"
#include "services/words/Settings.h"
#include "services/words/TimeService.h"

namespace words {

// Runs in the event loop's thread.
class Service
{
public:
    Service(sd_event *event, const Settings &settings);

    int port() const { return m_server.port(); }

private:
    std::optional<Answer> handle(const Request &request, const Later &later);
    Answer readCoils(const Request &request) const;
    Answer readWords(const Request &request) const;
    std::optional<Answer> write(const Request &request, const Later &later);
    std::optional<Answer> writeClock(const Request &request, const Later &later);
    Answer writeSettings(const Request &request);
    void applyScreen(unsigned address, unsigned count);

    Settings m_settings;
    std::string m_zonePath;
    Registers m_registers;
    Saver m_saver;
    TimeService m_time;
    PanelScreen m_screen;
    Server m_server;
};

} // namespace words
