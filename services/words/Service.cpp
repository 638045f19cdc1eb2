#include "services/words/Service.h"

#include "platform/paths.h"
#include "services/words/LocalTime.h"

namespace words {
namespace {

constexpr const char *FOLDER = "/mnt/data/sysset/words";
constexpr const char *ZONE = "/mnt/data/etc/tz/tz.conf";

bool isClock(const Request &request)
{
    return request.address >= CLOCK_FIRST &&
           request.address + request.count <= CLOCK_FIRST + CLOCK_COUNT;
}

Answer failed(Failure failure)
{
    return {failure, {}, {}};
}

Store loadedStore(Registers &registers)
{
    Store store(panelPath(FOLDER));
    if (const auto values = store.load()) {
        for (const unsigned address : registers.adopt(*values))
            warn("word " + std::to_string(address) + " was kept with a value that it cannot have");
    }
    return store;
}

// The words of a clock outside their range can be read, but not written back.
void tellOfWrongClock(const std::string &zone)
{
    const Word year = clockWords(std::time(nullptr), zone).front();
    if (!isInRange(CLOCK_FIRST, year))
        warn("the clock says the year " + std::to_string(year) + ": it is to be set");
}

} // namespace

Service::Service(sd_event *event, const Settings &settings)
    : m_settings(settings),
      m_zonePath(panelPath(ZONE)),
      m_saver(loadedStore(m_registers)),
      m_time(event),
      m_screen(event, [this] { m_time.wake(); }),
      m_server(event, settings.port, [this](const Request &request, const Later &later) {
          return handle(request, later);
      })
{
    tellOfWrongClock(readZone(m_zonePath));
    m_screen.setBrightness(m_registers.read(BRIGHTNESS));
    m_screen.setOffTime(m_registers.read(BACKLIGHT_TIME));
}

std::optional<Answer> Service::handle(const Request &request, const Later &later)
{
    switch (request.kind) {
    case Request::Kind::READ_COILS:
        return readCoils(request);
    case Request::Kind::READ_WORDS:
        return readWords(request);
    default:
        return write(request, later);
    }
}

// Coil 0: may the clock be set.
Answer Service::readCoils(const Request &request) const
{
    if (request.address != 0 || request.count != 1)
        return failed(Failure::ILLEGAL_ADDRESS);
    return {Failure::NONE, {}, {static_cast<std::uint8_t>(m_settings.mayClockBeSet ? 1 : 0)}};
}

Answer Service::readWords(const Request &request) const
{
    if (isClock(request)) {
        const auto now = clockWords(std::time(nullptr), readZone(m_zonePath));
        const auto first = now.begin() + (request.address - CLOCK_FIRST);
        return {Failure::NONE, {first, first + request.count}, {}};
    }
    if (!m_registers.exist(request.address, request.count))
        return failed(Failure::ILLEGAL_ADDRESS);
    return {Failure::NONE, m_registers.read(request.address, request.count), {}};
}

std::optional<Answer> Service::write(const Request &request, const Later &later)
{
    return isClock(request) ? writeClock(request, later) : writeSettings(request);
}

// The clock is written whole or not at all.
std::optional<Answer> Service::writeClock(const Request &request, const Later &later)
{
    if (request.count != CLOCK_COUNT)
        return failed(Failure::ILLEGAL_ADDRESS);
    const auto time = clockTime(request.values, readZone(m_zonePath));
    if (!time)
        return failed(Failure::ILLEGAL_VALUE);
    if (!m_settings.mayClockBeSet)
        return failed(Failure::DEVICE_FAILURE);
    const Failure failure = m_time.set(*time, [later](Failure outcome) { later(failed(outcome)); });
    return failure == Failure::NONE ? std::nullopt : std::optional(failed(failure));
}

Answer Service::writeSettings(const Request &request)
{
    if (!m_registers.exist(request.address, request.count))
        return failed(Failure::ILLEGAL_ADDRESS);
    const Values before = m_registers.values();
    if (!m_registers.write(request.address, request.values))
        return failed(Failure::ILLEGAL_VALUE);
    if (m_registers.values() != before)
        m_saver.keep(m_registers.values());
    applyScreen(request.address, request.count);
    return {};
}

void Service::applyScreen(unsigned address, unsigned count)
{
    if (BRIGHTNESS >= address && BRIGHTNESS < address + count)
        m_screen.setBrightness(m_registers.read(BRIGHTNESS));
    if (BACKLIGHT_TIME >= address && BACKLIGHT_TIME < address + count)
        m_screen.setOffTime(m_registers.read(BACKLIGHT_TIME));
}

} // namespace words
