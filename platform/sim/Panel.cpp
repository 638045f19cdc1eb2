#include "platform/sim/Panel.h"

#include "platform/sim/StateDefaults.h"

#include <algorithm>

namespace sim {
namespace {

constexpr std::chrono::seconds RESET_TIMEOUT(2);

const Json &element(const Json &list, std::size_t index, const char *what)
{
    if (!list.is_array() || index >= list.size())
        throw BadRequest(std::string(what) + ": too few values");
    return list[index];
}

std::string textAt(const Json &list, std::size_t index, const char *what)
{
    const Json &value = element(list, index, what);
    if (!value.is_string())
        throw BadRequest(std::string(what) + ": the operation must be a text");
    return value.get<std::string>();
}

int numberAt(const Json &list, std::size_t index, const char *what)
{
    const Json &value = element(list, index, what);
    if (!value.is_number_integer() || value != value.get<int>())
        throw BadRequest(std::string(what) + ": must be a whole number");
    return value.get<int>();
}

// The scenario's list of orders `what`, each of at most `longest` values.
Json listOf(const Json &scenario, const char *what, std::size_t longest)
{
    Json list = scenario.value(what, Json::array());
    const auto fits = [longest](const Json &order) {
        return order.is_array() && order.size() <= longest;
    };
    if (!list.is_array() || !std::all_of(list.begin(), list.end(), fits))
        throw BadRequest(std::string(what) + ": must be a list of lists of at most " +
                         std::to_string(longest) + " values");
    return list;
}

Injections ordersOf(const Json &scenario)
{
    Injections orders;
    for (const Json &order : listOf(scenario, "fail", 3))
        orders.fail(textAt(order, 0, "fail"), numberAt(order, 1, "fail"),
                    order.size() > 2 ? numberAt(order, 2, "fail") : -1);
    for (const Json &order : listOf(scenario, "delay", 2))
        orders.delay(textAt(order, 0, "delay"), numberAt(order, 1, "delay"));
    return orders;
}

} // namespace

Panel::Panel() : m_state(defaultState()) {}

Json Panel::get(const std::string &path)
{
    const std::lock_guard lock(m_mutex);
    return valueAt(m_state, path);
}

void Panel::set(const std::string &path, const Json &value)
{
    const std::lock_guard lock(m_mutex);
    const Json before = m_state;
    change(m_state, path, value);
    stateChanged(before);
}

void Panel::apply(const Json &scenario)
{
    if (!scenario.is_object())
        throw BadRequest("a scenario must be an object");
    const Injections orders = ordersOf(scenario);
    Json part = scenario;
    part.erase("fail");
    part.erase("delay");
    const std::lock_guard lock(m_mutex);
    const Json before = m_state;
    overlay(m_state, part);
    m_injections = orders;
    stateChanged(before);
}

void Panel::stateChanged(const Json &before)
{
    m_net.stateChanged(before, m_state);
    m_update.stateChanged(before, m_state);
    if (keptPart(before) != keptPart(m_state))
        m_kept.changed();
}

void Panel::fail(const std::string &op, int code, int count)
{
    const std::lock_guard lock(m_mutex);
    m_injections.fail(op, code, count);
}

void Panel::delay(const std::string &op, int ms)
{
    const std::lock_guard lock(m_mutex);
    m_injections.delay(op, ms);
}

void Panel::clearFailures()
{
    const std::lock_guard lock(m_mutex);
    m_injections.clearFailures();
}

void Panel::clearDelays()
{
    const std::lock_guard lock(m_mutex);
    m_injections.clearDelays();
}

Json Panel::calls()
{
    const std::lock_guard lock(m_mutex);
    return m_log.toJson();
}

void Panel::clearCalls()
{
    const std::lock_guard lock(m_mutex);
    m_log.clear();
}

void Panel::reset()
{
    m_net.forget(RESET_TIMEOUT);
    m_media.forget(RESET_TIMEOUT);
    m_update.forget(RESET_TIMEOUT);
    m_serialPlc.forget();
    const std::lock_guard lock(m_mutex);
    m_net.forgetRegistrations();
    m_media.forgetRegistrations();
    m_state = defaultState();
    m_log.clear();
    m_injections = Injections();
    m_isHurried = false;
}

void Panel::hurry()
{
    const std::lock_guard lock(m_mutex);
    m_isHurried = true;
    m_hurried.notify_all();
}

void Panel::keepIn(const std::string &file)
{
    const std::lock_guard lock(m_mutex);
    m_kept.start(file, [this] { return get(std::string()); });
}

void Panel::stop(std::chrono::milliseconds timeout)
{
    m_net.stop(timeout);
    m_media.stop(timeout);
    m_update.stop(timeout);
    m_serialPlc.stop();
    m_kept.stop(timeout);
}

void Panel::sleep(std::unique_lock<std::mutex> &lock, int ms)
{
    if (ms > 0)
        m_hurried.wait_for(lock, std::chrono::milliseconds(ms), [this] { return m_isHurried; });
}

Panel &panel()
{
    static Panel &thePanel = *new Panel;
    return thePanel;
}

} // namespace sim
