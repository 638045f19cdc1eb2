#include "services/update/Rauc.h"

#include "services/common/Journal.h"

#include <utility>

namespace updates {
namespace {

constexpr const char *NAME = "de.pengutronix.rauc";
constexpr const char *PATH = "/";
constexpr const char *INSTALLER = "de.pengutronix.rauc.Installer";
constexpr std::uint64_t ANSWERS_WITHIN = 30'000'000; // us; RAUC is started by the first call
constexpr std::uint64_t TURN = 200'000;              // us

constexpr const char *COMPLETED = "type='signal',sender='de.pengutronix.rauc',path='/',"
                                  "interface='de.pengutronix.rauc.Installer',member='Completed'";
constexpr const char *OWNER_CHANGED =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='de.pengutronix.rauc'";
constexpr int GONE = -1; // no result of RAUC's

struct MessageDeleter
{
    void operator()(sd_bus_message *message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageDeleter>;

class BusError
{
public:
    sd_bus_error *operator&() { return &m_error; }
    BusError() = default;
    ~BusError() { sd_bus_error_free(&m_error); }
    BusError(const BusError &) = delete;
    BusError &operator=(const BusError &) = delete;

    std::string text() const { return m_error.message == nullptr ? "no answer" : m_error.message; }
    bool isTimeout() const
    {
        return sd_bus_error_has_name(&m_error, SD_BUS_ERROR_TIMEOUT) != 0 ||
               sd_bus_error_has_name(&m_error, SD_BUS_ERROR_NO_REPLY) != 0;
    }

private:
    sd_bus_error m_error = {};
};

// One entry of a{sv}; what is no text is passed over.
bool readFact(sd_bus_message *message, Slot &slot)
{
    const char *key = nullptr;
    const char *contents = nullptr;
    if (sd_bus_message_read(message, "s", &key) < 0 ||
        sd_bus_message_peek_type(message, nullptr, &contents) < 0)
        return false;
    if (std::string(contents) != "s")
        return sd_bus_message_skip(message, "v") >= 0;
    const char *value = nullptr;
    if (sd_bus_message_read(message, "v", "s", &value) < 0)
        return false;
    const std::string name = key;
    if (name == "device")
        slot.device = value;
    else if (name == "state")
        slot.isBooted = std::string(value) == "booted";
    else if (name == "boot-status")
        slot.mayBoot = std::string(value) == "good";
    return true;
}

// One struct (sa{sv}).
std::optional<Slot> readSlot(sd_bus_message *message)
{
    Slot slot;
    const char *name = nullptr;
    if (sd_bus_message_read(message, "s", &name) < 0 ||
        sd_bus_message_enter_container(message, 'a', "{sv}") < 0)
        return std::nullopt;
    slot.name = name;
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        if (!readFact(message, slot) || sd_bus_message_exit_container(message) < 0)
            return std::nullopt;
    }
    return sd_bus_message_exit_container(message) < 0 ? std::nullopt : std::optional(slot);
}

} // namespace

Rauc::Rauc()
{
    sd_bus *bus = nullptr;
    if (sd_bus_open_system(&bus) < 0)
        return;
    m_bus.reset(bus);
    sd_bus_set_method_call_timeout(bus, ANSWERS_WITHIN);
}

std::vector<Slot> Rauc::slots()
{
    BusError error;
    sd_bus_message *answer = nullptr;
    if (!m_bus || sd_bus_call_method(m_bus.get(), NAME, PATH, INSTALLER, "GetSlotStatus", &error,
                                     &answer, "") < 0) {
        service::warn("RAUC: " + error.text());
        return {};
    }
    const Message owned(answer);
    std::vector<Slot> slots;
    if (sd_bus_message_enter_container(answer, 'a', "(sa{sv})") < 0)
        return {};
    while (sd_bus_message_enter_container(answer, 'r', "sa{sv}") > 0) {
        auto slot = readSlot(answer);
        if (!slot || sd_bus_message_exit_container(answer) < 0)
            return {};
        slots.push_back(std::move(*slot));
    }
    return slots;
}

int Rauc::onCompleted(sd_bus_message *message, void *result, sd_bus_error *)
{
    std::int32_t code = 0;
    if (sd_bus_message_read(message, "i", &code) >= 0)
        *static_cast<std::optional<int> *>(result) = code;
    return 0;
}

int Rauc::onOwner(sd_bus_message *message, void *result, sd_bus_error *)
{
    const char *owner = nullptr;
    if (sd_bus_message_skip(message, "ss") >= 0 && sd_bus_message_read(message, "s", &owner) >= 0 &&
        *owner == '\0')
        *static_cast<std::optional<int> *>(result) = GONE;
    return 0;
}

Rauc::Match Rauc::match(const char *rule, sd_bus_message_handler_t handler, void *data)
{
    sd_bus_slot *slot = nullptr;
    sd_bus_add_match(m_bus.get(), &slot, rule, handler, data);
    return Match(slot);
}

RaucOutcome Rauc::install(const std::string &path, const std::function<bool()> &turn,
                          std::string &why)
{
    const auto ended = [&why](RaucOutcome outcome, const std::string &reason) {
        why = reason;
        return outcome;
    };
    if (!m_bus)
        return ended(RaucOutcome::Refused, "there is no bus");
    std::optional<int> result;
    const Match completed = match(COMPLETED, onCompleted, &result);
    const Match owner = match(OWNER_CHANGED, onOwner, &result);
    if (!completed || !owner)
        return ended(RaucOutcome::Refused, "the bus does not listen");
    BusError error;
    if (sd_bus_call_method(m_bus.get(), NAME, PATH, INSTALLER, "InstallBundle", &error, nullptr,
                           "sa{sv}", path.c_str(), 0) < 0)
        return ended(error.isTimeout() ? RaucOutcome::Unknown : RaucOutcome::Refused, error.text());
    while (!result) {
        if (!turn())
            return ended(RaucOutcome::Unknown, "this service ends");
        const int processed = sd_bus_process(m_bus.get(), nullptr);
        if (processed < 0 || (processed == 0 && sd_bus_wait(m_bus.get(), TURN) < 0))
            return ended(RaucOutcome::Unknown, "the bus has gone");
    }
    if (*result == GONE)
        return ended(RaucOutcome::Unknown, "RAUC has ended");
    return *result == 0 ? RaucOutcome::Installed : ended(RaucOutcome::Failed, lastError());
}

std::string Rauc::lastError()
{
    char *text = nullptr;
    if (sd_bus_get_property_string(m_bus.get(), NAME, PATH, INSTALLER, "LastError", nullptr,
                                   &text) < 0)
        return "for a reason that RAUC keeps to itself";
    std::string error = text;
    ::free(text); // NOLINT: sd-bus hands it out like this
    return error;
}

bool Rauc::markBad()
{
    BusError error;
    const bool isMarked = m_bus && sd_bus_call_method(m_bus.get(), NAME, PATH, INSTALLER, "Mark",
                                                      &error, nullptr, "ss", "bad", "booted") >= 0;
    if (!isMarked)
        service::warn("RAUC: " + error.text());
    return isMarked;
}

bool Rauc::restartBoard()
{
    BusError error;
    const bool is_called =
        m_bus &&
        sd_bus_call_method(m_bus.get(), "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                           "org.freedesktop.systemd1.Manager", "Reboot", &error, nullptr, "") >= 0;
    if (!is_called)
        service::warn("the board is not started anew: " + error.text());
    return is_called;
}

} // namespace updates
