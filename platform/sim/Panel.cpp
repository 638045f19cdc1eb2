#include "platform/sim/Panel.h"

#include <thread>

namespace sim {
namespace {

constexpr std::chrono::seconds resetPatience(2);

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

Injections ordersOf(const Json &scenario)
{
    Injections orders;
    for (const Json &order : scenario.value("fail", Json::array()))
        orders.fail(textAt(order, 0, "fail"), numberAt(order, 1, "fail"),
                    order.size() > 2 ? numberAt(order, 2, "fail") : -1);
    for (const Json &order : scenario.value("delay", Json::array()))
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
    m_net.stateChanged(before, m_state);
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
    m_net.stateChanged(before, m_state);
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
    m_net.forget(resetPatience);
    m_media.forget(resetPatience);
    const std::lock_guard lock(m_mutex);
    m_net.forgetRegistrations();
    m_media.forgetRegistrations();
    m_state = defaultState();
    m_log.clear();
    m_injections = Injections();
}

void Panel::stop(std::chrono::milliseconds patience)
{
    m_net.stop(patience);
    m_media.stop(patience);
}

void Panel::sleep(std::unique_lock<std::mutex> &lock, int ms)
{
    if (ms <= 0)
        return;
    lock.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    lock.lock();
}

Panel &panel()
{
    static Panel &thePanel = *new Panel;
    return thePanel;
}

} // namespace sim
