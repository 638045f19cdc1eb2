#include "platform/sim/UpdateDesk.h"

#include "platform/sim/Panel.h"

namespace sim {
namespace {

enum Command { START = 6, POLL = 7, CHECK = 12 };

constexpr int ERR_UNREADABLE = -1;
constexpr int ERR_IDLE = -3;
constexpr int ERR_VERSION = -9;
constexpr int UNDER_WAY = 1;
constexpr int WHOLE = 100; // percent

std::string modelOf(const UpdateFile &file, const Json &update)
{
    return file.kind == UpdateFile::Plain ? update.at("model").get<std::string>() : file.model;
}

// A firmware must not be newer than the project that is installed, and the other way round.
bool versionsFit(const UpdateFile &file, const std::string &path, const Json &update)
{
    const char *installed = isFirmware(path) ? "projectVersion" : "firmwareVersion";
    return file.version <= update.at(installed).get<std::uint32_t>();
}

UpdateStatus check(const Json &update, const std::string &path)
{
    const UpdateFile file = readUpdateFile(path);
    int error = 0;
    if (!update.at("error").is_null())
        error = update.at("error").get<int>();
    else if (file.kind == UpdateFile::Unusable)
        error = ERR_UNREADABLE;
    else if (!versionsFit(file, path, update))
        error = ERR_VERSION;
    return {0, 0, error, modelOf(file, update)};
}

void noteInstalled(const UpdateInstall &install)
{
    const std::string kind = isFirmware(install.path()) ? "firmware" : "project";
    panel().locked([&](Json &state) {
        state["update"]["installed"][kind] = fileName(install.path());
        if (install.file().kind == UpdateFile::Headed)
            state["update"][kind + "Version"] = install.file().version;
    });
}

} // namespace

UpdateAnswer UpdateDesk::answer(const Json &update, int command, const std::string &payload)
{
    switch (command) {
    case CHECK:
        return {true, false, check(update, payload)};
    case START:
        return start(update, payload);
    case POLL:
        return poll(update);
    default:
        return {};
    }
}

// One install at a time: a second is not answered.
UpdateAnswer UpdateDesk::start(const Json &update, const std::string &path)
{
    if (m_install)
        return {};
    m_install.emplace(path);
    m_model = modelOf(m_install->file(), update);
    m_started = std::chrono::steady_clock::now();
    m_polls = 0;
    return {true, false, {UNDER_WAY, 0, 0, m_model}};
}

UpdateAnswer UpdateDesk::poll(const Json &update)
{
    if (!m_install)
        return {true, false, {0, 0, ERR_IDLE, {}}};
    const std::size_t step = nextStep(update);
    const Json &steps = update.at("steps");
    const bool last = step >= steps.size();
    const int percent = last ? WHOLE : steps[step].get<int>();
    if (!update.at("dieAt").is_null() && percent >= update.at("dieAt").get<int>())
        return {false, true, {}};
    return last ? finish(update) : advance(percent);
}

std::size_t UpdateDesk::nextStep(const Json &update)
{
    const std::chrono::milliseconds stepTime(update.at("stepTime").get<int>());
    if (stepTime.count() == 0)
        return m_polls++;
    const auto passed = std::chrono::steady_clock::now() - m_started;
    return static_cast<std::size_t>(passed / stepTime);
}

UpdateAnswer UpdateDesk::advance(int percent)
{
    const int error = m_install->copyTo(percent);
    if (error == 0)
        return {true, false, {UNDER_WAY, percent, 0, m_model}};
    m_install.reset();
    return {true, false, {0, percent, error, m_model}};
}

UpdateAnswer UpdateDesk::finish(const Json &update)
{
    int error = update.at("result").get<int>();
    if (error == 0)
        error = m_install->finish();
    if (error == 0)
        noteInstalled(*m_install);
    m_install.reset();
    return {true, false, {0, WHOLE, error, m_model}};
}

} // namespace sim
