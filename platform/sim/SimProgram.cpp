#include "platform/sim/SimProgram.h"

#include "platform/control/ControlServer.h"
#include "platform/control/UiDriver.h"
#include "platform/control/UiWidgets.h"
#include "platform/sim/InstalledFiles.h"
#include "platform/sim/Panel.h"
#include "platform/sim/Requests.h"
#include "platform/sim/Root.h"
#include "platform/sim/Scenario.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace sim {
namespace {

constexpr int CANNOT_RUN = 1;
constexpr int BAD_ENVIRONMENT = 2;
constexpr std::chrono::milliseconds EXIT_PATIENCE(500);

struct Unusable : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

std::string systemError()
{
    return std::error_code(errno, std::generic_category()).message();
}

// SYSSET_LCD=800x480
void setScreen(const std::string &size)
{
    const auto cross = size.find('x');
    if (cross == std::string::npos)
        throw BadRequest("SYSSET_LCD must be WIDTHxHEIGHT, like 800x480, not " + size);
    panel().set(
        "lcd",
        {{"width", control::parseNumber(size.substr(0, cross), "SYSSET_LCD: the width")},
         {"height", control::parseNumber(size.substr(cross + 1), "SYSSET_LCD: the height")}});
}

// A panel's start scripts put the zone that it keeps into the environment.
void exportTimeZone()
{
    std::ifstream file(panelRoot() + "/mnt/data/etc/tz/tz.conf");
    std::string line;
    std::getline(file, line);
    if (line.rfind("TZ=", 0) == 0 && line.size() > 3)
        setenv("TZ", line.c_str() + 3, 0); // NOLINT(concurrency-mt-unsafe): the only thread yet
}

// The scenario has the last word on what it names.
void applyEnvironment()
{
    panel().apply(loadKept(keptFile()));
    const std::string scenario = environment("SYSSET_SCENARIO");
    panel().apply(loadScenario(scenario.empty() ? "full" : scenario));
    const std::string size = environment("SYSSET_LCD");
    if (!size.empty())
        setScreen(size);
}

std::string stateFile()
{
    return runFolder() + "/last.json";
}

// Makes the folders, and holds the lock to the end of the process.
void takeRoot()
{
    namespace fs = std::filesystem;
    std::error_code error;
    fs::create_directories(runFolder(), error);
    if (!error)
        fs::permissions(runFolder(), fs::perms::owner_all, error);
    if (error)
        throw Unusable("cannot make " + runFolder() + ": " + error.message());
    const int lock = open((runFolder() + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock == -1)
        throw Unusable("cannot make " + runFolder() + "/lock: " + systemError());
    if (flock(lock, LOCK_EX | LOCK_NB) == -1)
        throw Unusable("another program runs the simulated panel in " + panelRoot());
    fs::remove(stateFile(), error); // a former run's
}

void leaveState()
{
    panel().stop(EXIT_PATIENCE);
    const std::string part = stateFile() + ".new";
    std::ofstream stream(part);
    stream << panel().get("").dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    stream.close();
    if (!stream || std::rename(part.c_str(), stateFile().c_str()) != 0)
        std::cerr << "sysset-sim: cannot write " << stateFile() << ": " << systemError() << "\n";
}

// An eventfd(2), written by the signal handler and read by the event loop.
int endSignal = -1;

void onSignal(int)
{
    const std::uint64_t once = 1;
    static_cast<void>(write(endSignal, &once, sizeof once) == 0);
}

// The first of these signals ends the program as the control socket's "quit" does, a second one
// kills it.
void endOnSignals()
{
    endSignal = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    auto *notifier =
        new QSocketNotifier(endSignal, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false);
        control::endProgram();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}

int refuse(int status, const char *reason)
{
    std::cerr << "sysset-sim: " << reason << "\n";
    return status;
}

control::ControlServer &programServer()
{
    static auto &server = *new control::ControlServer(runRequest);
    return server;
}

} // namespace

int startFromEnvironment()
{
    const std::string root = panelRoot();
    setenv("SYSSET_ROOT", root.c_str(), 1); // NOLINT(concurrency-mt-unsafe): the only thread yet
    try {
        applyEnvironment();
        takeRoot();
        installFiles();
        panel().keepIn(keptFile());
        exportTimeZone();
    } catch (const BadRequest &error) {
        return refuse(BAD_ENVIRONMENT, error.what());
    } catch (const Unusable &error) {
        return refuse(CANNOT_RUN, error.what());
    }
    std::atexit(leaveState);
    std::at_quick_exit(leaveState);
    return 0;
}

bool serveControl()
{
    control::ControlServer &server = programServer();
    control::dimPictures([] { return panel().get("lcd.brightness").get<int>(); });
    if (!server.start(QString::fromStdString(socketPath()))) {
        std::cerr << "sysset-sim: cannot listen at " << socketPath() << ": "
                  << server.errorString().toStdString() << "\n";
        return false;
    }
    std::atexit([] { programServer().stop(); });
    endOnSignals();
    std::cerr << "panel ready\n";
    return true;
}

} // namespace sim
