#include "platform/sim/NetService.h"

#include "platform/sim/NetDevices.h"
#include "platform/sim/Panel.h"
#include "platform/sim/WifiDrift.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace sim {
namespace {

constexpr auto RECORD_DELAY = 50ms;
constexpr auto SWITCH_DELAY = 100ms; // until the switch; the record follows RECORD_DELAY later
constexpr auto LEASE_DELAY = 300ms;
constexpr auto JOIN_DELAY = 400ms;
constexpr auto FAILURE_TIME = 20s; // that a failure is told, though the network before is back

bool modemAnswers(Json &state)
{
    return serviceRuns(state) && presentDevice(state, "4G") != nullptr;
}

// Both paths hold the same value: a change of one is copied to the other.
void keepEqual(const Json &before, Json &state, const char *one, const char *other)
{
    const Json::json_pointer first(one);
    const Json::json_pointer second(other);
    if (before.at(first) != state.at(first))
        state[second] = state.at(first);
    else if (before.at(second) != state.at(second))
        state[first] = state.at(second);
}

const Json *accessPoint(const Json &state, const std::string &ssid)
{
    const Json &aps = state.at("wifi").at("aps");
    const auto found = std::find_if(aps.begin(), aps.end(),
                                    [&](const Json &ap) { return text(ap, "ssid") == ssid; });
    return found == aps.end() ? nullptr : &*found;
}

// Joins the configured network, if it is in range and open or the password is right.
void finishJoining(Json &state)
{
    Json &wifi = state["wifi"];
    const std::string &ssid = text(wifi["user"], "ssid");
    const Json *ap = accessPoint(state, ssid);
    const bool open = ap != nullptr && ap->at("security").get<int>() < 2;
    const auto password = wifi["passwords"].find(ssid);
    const bool right = password != wifi["passwords"].end() && *password == wifi["user"]["password"];
    const bool joined = ap != nullptr && (open || right);
    wifi["state"] = int(joined ? netT::WIFI_CONNECTED : netT::WIFI_FAILED);
    if (joined)
        wifi["signal"] = ap->at("level");
}

} // namespace

void NetService::schedule(std::chrono::milliseconds delay, std::function<void(Json &)> action)
{
    m_thread.post(delay, [action = std::move(action)] { panel().locked(action); });
}

bool NetService::forget(std::chrono::milliseconds timeout)
{
    return m_thread.forget(timeout);
}

void NetService::forgetRegistrations()
{
    m_recordListeners.clear();
    m_atListeners.clear();
    m_recordsPosted = false;
    m_keptWifi = nullptr;
}

// --- Records -----------------------------------------------------------------------------------

void NetService::registerRecords(netT::AllNetInfoCallback callback, void *context, bool repeat)
{
    m_recordListeners.push_back({callback, context, repeat, true});
    postRecords();
}

void NetService::recordsChanged()
{
    for (RecordListener &listener : m_recordListeners)
        listener.due = true;
    postRecords();
}

void NetService::postRecords()
{
    if (!std::exchange(m_recordsPosted, true))
        m_thread.post(RECORD_DELAY, [this] { deliverRecords(); });
}

std::vector<NetService::RecordListener> NetService::takeDueListeners()
{
    std::vector<RecordListener> due;
    for (RecordListener &listener : m_recordListeners)
        if (std::exchange(listener.due, false))
            due.push_back(listener);
    const auto isDone = [](const RecordListener &listener) {
        return !listener.repeat && !listener.due;
    };
    m_recordListeners.erase(
        std::remove_if(m_recordListeners.begin(), m_recordListeners.end(), isDone),
        m_recordListeners.end());
    return due;
}

void NetService::deliverRecords()
{
    std::vector<netT::stAllNetInfo_tag> records;
    const auto due = panel().locked([&](const Json &state) {
        m_recordsPosted = false;
        for (const Json &device : state["net"]["devices"])
            records.push_back(toRecord(device));
        return serviceRuns(state) ? takeDueListeners() : std::vector<RecordListener>();
    });
    for (const RecordListener &listener : due) {
        auto copy = records;
        listener.callback(copy, listener.context);
    }
}

// --- Modem -------------------------------------------------------------------------------------

void NetService::registerAt(netT::AtInfoCallback callback, void *context)
{
    m_atListeners.push_back({callback, context, true});
    m_thread.post(RECORD_DELAY, [this] { deliverAt(); });
}

void NetService::atInfoChanged()
{
    for (AtListener &listener : m_atListeners)
        listener.due = true;
    m_thread.post(RECORD_DELAY, [this] { deliverAt(); });
}

void NetService::deliverAt()
{
    netT::tag_atCollect info;
    std::vector<AtListener> due;
    panel().locked([&](Json &state) {
        if (!modemAnswers(state))
            return;
        info = toAtInfo(state["modem"]["at"]);
        for (AtListener &listener : m_atListeners)
            if (std::exchange(listener.due, false))
                due.push_back(listener);
    });
    for (const AtListener &listener : due) {
        auto copy = info;
        listener.callback(copy, listener.context);
    }
}

netT::tag_atCollect toAtInfo(const Json &at)
{
    netT::tag_atCollect info;
    at.at("texts").get_to(info.texts);
    at.at("numbers").get_to(info.numbers);
    info.last = text(at, "last");
    return info;
}

// --- Devices -----------------------------------------------------------------------------------

void NetService::refresh(Json &state, Json &device)
{
    const bool working = works(state, device);
    device["bNetNormal"] = working ? 1 : 0;
    if (!isOn(device) || (usesDhcp(device) && !working))
        dropAddress(device);
    else if (usesDhcp(device))
        requestLease(text(device, "sDevName"));
    else
        takeStatic(state, device);
    recordsChanged();
}

void NetService::requestLease(const std::string &name)
{
    schedule(LEASE_DELAY, [this, name](Json &state) {
        Json *device = findDevice(state, name);
        if (device == nullptr || !usesDhcp(*device) || !works(state, *device))
            return;
        takeLease(state, *device);
        recordsChanged();
    });
}

void NetService::switchDevice(const std::string &name, bool on)
{
    schedule(SWITCH_DELAY, [this, name, on](Json &state) {
        Json *device = findDevice(state, name);
        if (device == nullptr)
            return;
        if (isOn(*device) && !usesDhcp(*device))
            keepAsStatic(state, *device);
        (*device)["sFunction"] = on ? "enable" : "disable";
        state["net"]["up"][name] = on;
        const bool wifi = text(*device, "sNetType") == "WIFI";
        if (wifi)
            state["wifi"]["state"] = int(on ? netT::WIFI_IDLE : netT::WIFI_DISABLED);
        if (wifi && on && !text(state["wifi"]["user"], "ssid").empty())
            joinWifi(state, *device);
        refresh(state, *device);
    });
}

void NetService::joinWifi(Json &state, Json &device)
{
    state["wifi"]["state"] = int(netT::WIFI_CONNECTING);
    refresh(state, device);
    schedule(JOIN_DELAY, [this, name = text(device, "sDevName"), join = ++m_joins](Json &tree) {
        Json *wifi = findDevice(tree, name);
        const bool current = join == m_joins && tree["wifi"]["state"] == int(netT::WIFI_CONNECTING);
        if (!current || wifi == nullptr)
            return;
        finishJoining(tree);
        refresh(tree, *wifi);
        if (tree["wifi"]["state"] == int(netT::WIFI_FAILED))
            bringBackWifi(tree, *wifi);
    });
}

void NetService::keepWifi(const Json &state)
{
    if (state["wifi"]["state"] == int(netT::WIFI_CONNECTED))
        m_keptWifi = state["wifi"]["user"];
}

void NetService::bringBackWifi(Json &state, Json &device)
{
    if (m_keptWifi.is_null() || m_keptWifi == state["wifi"]["user"])
        return;
    schedule(FAILURE_TIME, [this, name = text(device, "sDevName"), join = m_joins](Json &tree) {
        Json *wifi = findDevice(tree, name);
        const bool current = join == m_joins && tree["wifi"]["state"] == int(netT::WIFI_FAILED);
        if (!current || wifi == nullptr)
            return;
        tree["wifi"]["user"] = m_keptWifi;
        joinWifi(tree, *wifi);
    });
}

// --- Changes from outside ----------------------------------------------------------------------

void NetService::stateChanged(const Json &before, Json &state)
{
    wifiChanged(before, state);
    for (Json &device : state["net"]["devices"])
        deviceChanged(before, state, device);
    modemChanged(before, state);
    if (before["net"] != state["net"])
        recordsChanged();
}

void NetService::deviceChanged(const Json &before, Json &state, Json &device)
{
    const std::string &name = text(device, "sDevName");
    const Json *old = findDevice(before, name);
    if (old == nullptr)
        return;
    if (isOn(*old) != isOn(device) && before["net"]["up"] == state["net"]["up"])
        state["net"]["up"][name] = isOn(device);
    if (hasLink(before, *old) != hasLink(state, device))
        refresh(state, device);
    const Json none;
    if (before["net"]["lease"].value(name, none) != state["net"]["lease"].value(name, none))
        requestLease(name);
}

void NetService::modemChanged(const Json &before, Json &state)
{
    keepEqual(before, state, "/modem/csq", "/modem/at/numbers/0");
    keepEqual(before, state, "/modem/ccid", "/modem/at/texts/0");
    Json old = before;
    const bool appeared = !modemAnswers(old) && modemAnswers(state);
    if (appeared || before["modem"]["at"] != state["modem"]["at"])
        atInfoChanged();
}

// The signal of a joined network follows its access point. When that goes out of range the link is
// lost; when it comes back it is joined again.
void NetService::wifiChanged(const Json &before, Json &state)
{
    Json &wifi = state["wifi"];
    if (before["wifi"]["drift"] != wifi["drift"])
        scheduleDrift(state);
    if (before["wifi"]["aps"] == wifi["aps"])
        return;
    const std::string &ssid = text(wifi["user"], "ssid");
    const Json *ap = accessPoint(state, ssid);
    const bool cameBack = !ssid.empty() && ap != nullptr && accessPoint(before, ssid) == nullptr;
    Json *device = presentDevice(state, "WIFI");
    if (wifi["state"] == int(netT::WIFI_CONNECTED) && ap != nullptr)
        wifi["signal"] = ap->at("level");
    else if (wifi["state"] == int(netT::WIFI_CONNECTED))
        wifi["state"] = int(netT::WIFI_DISCONNECTED);
    else if (wifi["state"] == int(netT::WIFI_DISCONNECTED) && cameBack && device != nullptr)
        joinWifi(state, *device);
}

void NetService::scheduleDrift(const Json &state)
{
    const int pause = state["wifi"]["drift"].get<int>();
    const int drift = ++m_drifts;
    if (pause == 0)
        return;
    schedule(std::chrono::milliseconds(pause), [this, drift](Json &tree) {
        if (drift != m_drifts)
            return;
        const Json before = tree;
        driftWifi(tree["wifi"], m_random);
        stateChanged(before, tree);
        scheduleDrift(tree);
    });
}

} // namespace sim
