#include "services/update/Desk.h"

#include "services/common/Journal.h"
#include "services/update/Firmware.h"
#include "services/update/Trial.h"

#include <memory>
#include <utility>

namespace updates {
namespace {

constexpr int UNDER_WAY = 1;
constexpr int UNPACKED = 95; // percent; the rest is the disk's
constexpr int WHOLE = 100;

// As the pages are told.
constexpr int PROJECT_OF_ANOTHER_MODEL = -5;
constexpr int FIRMWARE_OF_ANOTHER_MODEL = -11; // logos are on that page, too

// A file's name for the journal: one line, whatever it holds.
std::string plainName(const std::string &path)
{
    std::string name = os::fileName(path);
    for (char &letter : name)
        if (static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F)
            letter = '?';
    return name;
}

Checked checkedFile(const std::string &path, const Settings &settings)
{
    if (os::fileName(path).find(".osf3") != std::string::npos)
        return checkFirmware(path, settings);
    return checkProject(path, settings);
}

} // namespace

Desk::Desk(sd_event *event, Settings settings)
    : m_settings(std::move(settings)), m_telling(event), m_checking(event), m_install(event)
{
    removeLeftovers();
    m_telling.start([] { Trial().tellOutcome(); }, [] {});
}

Desk::~Desk()
{
    m_isStopping = true;
}

void Desk::answer(int command, const std::string &payload, const Reply &reply)
{
    switch (command) {
    case os::UPDATE_CHECK:
        return check(payload, reply);
    case os::UPDATE_START:
        return start(payload, reply);
    case os::UPDATE_POLL:
        return reply(status());
    default:
        return;
    }
}

void Desk::check(const std::string &path, const Reply &reply)
{
    if (m_checking.isBusy())
        return;
    const auto found = std::make_shared<Checked>();
    m_checking.start([this, path, found] { *found = checkedFile(path, m_settings); },
                     [path, found, reply] {
                         if (found->error != 0)
                             service::warn(plainName(path) + " does not fit: " + found->why);
                         reply({0, 0, found->error, found->model});
                     });
}

// Looked at anew: between check and install a stick may have become another one.
void Desk::start(const std::string &path, const Reply &reply)
{
    if (m_install.isBusy())
        return;
    m_name = plainName(path);
    m_percent = 0;
    const auto found = std::make_shared<Checked>();
    m_install.start([this, path, found] { *found = checkedFile(path, m_settings); },
                    [this, found, reply] {
                        m_model = found->model;
                        reply({UNDER_WAY, 0, 0, m_model});
                        install(*found);
                    });
}

void Desk::install(const Checked &checked)
{
    const bool isFirmware = std::holds_alternative<Bundle>(checked.content);
    // Firmware that is newer than the project comes here only once the operator has agreed.
    const bool isAgreed = isFirmware && checked.error == os::UPDATE_UNFIT_VERSION;
    if (checked.error != 0 && !isAgreed)
        return end(checked.error, checked.why);
    const auto *const container = std::get_if<Container>(&checked.content);
    const bool isProject = container != nullptr && container->kind == Kind::PROJECT;
    if (checked.model.empty() || checked.model != (isProject ? m_settings.model : m_settings.board))
        return end(isProject ? PROJECT_OF_ANOTHER_MODEL : FIRMWARE_OF_ANOTHER_MODEL,
                   "it is for the model " + checked.model);
    struct Result
    {
        int error = 0;
        std::string why;
    };
    const auto result = std::make_shared<Result>();
    m_install.start(
        [this, checked, result] { result->error = installChecked(checked, result->why); },
        [this, result] { end(result->error, result->why); });
}

// In the install's thread.
int Desk::installChecked(const Checked &checked, std::string &why)
{
    const auto isAt = [this](int percent) {
        m_percent = percent;
        return !m_isStopping;
    };
    const auto *const project = std::get_if<Container>(&checked.content);
    if (project == nullptr)
        return installFirmware(checked, isAt, why);
    const std::uint64_t all = project->contentBytes;
    return installProject(
        checked,
        [&](std::uint64_t bytes) { return isAt(static_cast<int>(bytes * UNPACKED / all)); }, why);
}

void Desk::end(int error, const std::string &why)
{
    if (error == 0)
        service::say(m_name + ": installed");
    else
        service::warn(m_name + " is not installed: " + why);
    m_result = {0, error == 0 ? WHOLE : m_percent.load(), error, m_model};
}

os::UpdateStatus Desk::status() const
{
    return m_install.isBusy() ? os::UpdateStatus{UNDER_WAY, m_percent, 0, m_model} : m_result;
}

} // namespace updates
