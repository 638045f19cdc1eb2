#include "platform/sim/UpdateDesk.h"

#include "platform/sim/Panel.h"

namespace sim {
namespace {

constexpr int UNDER_WAY = 1;
constexpr int WHOLE = 100; // percent

std::string modelOf(const os::UpdateFile &file, const Json &update)
{
    return file.kind == os::UpdateFile::Plain ? update.at("model").get<std::string>() : file.model;
}

// A firmware must not be newer than the project that is installed, and the other way round.
bool versionsFit(const os::UpdateFile &file, const std::string &path, const Json &update)
{
    const char *installed = os::isFirmware(path) ? "projectVersion" : "firmwareVersion";
    return file.version <= update.at(installed).get<std::uint32_t>();
}

os::UpdateStatus check(const Json &update, const std::string &path)
{
    const os::UpdateFile file = os::readUpdateFile(path);
    int error = 0;
    if (!update.at("error").is_null())
        error = update.at("error").get<int>();
    else if (file.kind == os::UpdateFile::Unusable)
        error = os::UPDATE_BAD_FILE;
    else if (!versionsFit(file, path, update))
        error = os::UPDATE_UNFIT_VERSION;
    return {0, 0, error, modelOf(file, update)};
}

void noteInstalled(const UpdateInstall &install)
{
    const std::string kind = os::isFirmware(install.path()) ? "firmware" : "project";
    panel().locked([&](Json &state) {
        state["update"]["installed"][kind] = os::fileName(install.path());
        if (install.file().kind == os::UpdateFile::Headed)
            state["update"][kind + "Version"] = install.file().version;
    });
}

} // namespace

void UpdateDesk::abandon()
{
    m_install.reset();
    m_result = {0, 0, os::UPDATE_IDLE, {}};
}

UpdateAnswer UpdateDesk::answer(const Json &update, int command, const std::string &payload)
{
    switch (command) {
    case os::UPDATE_CHECK:
        return {true, false, check(update, payload)};
    case os::UPDATE_START:
        return start(update, payload);
    case os::UPDATE_POLL:
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
        return {true, false, m_result};
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
    m_result = {0, percent, error, m_model};
    return {true, false, m_result};
}

UpdateAnswer UpdateDesk::finish(const Json &update)
{
    int error = update.at("result").get<int>();
    if (error == 0)
        error = m_install->finish();
    if (error == 0)
        noteInstalled(*m_install);
    m_install.reset();
    m_result = {0, WHOLE, error, m_model};
    return {true, false, m_result};
}

} // namespace sim
