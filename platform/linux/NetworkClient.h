// The client of the network service over D-Bus: services/network/org.sysset.Network1.xml.
#pragma once

#include "platform/linux/SystemBus.h"
#include "platform/net.h"

#include <cstdint>
#include <functional>
#include <Network1Proxy.h>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

namespace board {

constexpr const char *NETWORK_SERVICE = "org.sysset.Network1";

// What the service answers, as its description has it.
using NetworkRecord =
    sdbus::Struct<std::string, std::string, std::string, std::string, std::string, std::string,
                  std::string, std::string, bool, bool, bool, bool, bool, bool>;
using NetworkRecords = std::vector<NetworkRecord>;
using NetworkBytes = std::vector<std::uint8_t>;
using NetworkStation =
    sdbus::Struct<std::int32_t, std::int32_t, NetworkBytes, std::string, std::int32_t>;
using NetworkStations = std::vector<NetworkStation>;
using NetworkWifi = sdbus::Struct<std::int32_t, NetworkBytes, NetworkBytes, std::int32_t,
                                  std::int32_t, std::int32_t>;
using NetworkModem = sdbus::Struct<std::int32_t, std::string, std::string, std::string, bool>;
using NetworkApn = sdbus::Struct<std::string, std::string, std::string, std::string, bool>;
using NetworkTimes = sdbus::Struct<std::int32_t, std::int32_t, std::int32_t, std::int32_t>;

// For structured bindings, which sdbus::Struct itself does not take.
template <typename... Fields>
const std::tuple<Fields...> &fieldsOf(const sdbus::Struct<Fields...> &structure)
{
    return structure;
}

// Where the fields of a record are that calls look at one by one.
enum NetworkField {
    RECORD_ADDRESS = 3,
    RECORD_MASK,
    RECORD_GATEWAY,
    RECORD_DNS,
    RECORD_SECOND_DNS,
    RECORD_UP = 10,
    RECORD_LINKED,
    RECORD_DHCP,
};

// An answer, or what a signal brings.
struct NetworkAnswer
{
    std::variant<std::monostate, NetworkRecord, NetworkRecords, NetworkStations, NetworkWifi,
                 NetworkModem, NetworkApn, NetworkTimes, std::string>
        value;
    std::string error;  // name of the D-Bus error; empty without one
    std::string sender; // the unique name on the bus
};

// The generated proxy, with one way for all answers and one for all signals, both on the thread
// that serves the connection. An answer that lacks its value comes as an error, such a signal not
// at all. It gets signals only once registerProxy() has subscribed it, which blocks for the bus.
class NetworkProxy final : public sdbus::ProxyInterfaces<org::sysset::Network1_proxy>
{
public:
    using Take = std::function<void(NetworkAnswer answer)>;

    NetworkProxy(sdbus::IConnection &bus, Take answered, Take changed = {});
    NetworkProxy(const NetworkProxy &) = delete;
    NetworkProxy &operator=(const NetworkProxy &) = delete;
    ~NetworkProxy() { unregisterProxy(); } // gives up what is under way

private:
    using Error = sdbus::Error;

    template <typename Value>
    void take(const Value &value, const Error *error);
    template <typename Value>
    void news(const Value &value);

    void onDevicesChanged(const NetworkRecords &records) override;
    void onModemChanged(const NetworkModem &modem) override;
    void onGetDevicesReply(const NetworkRecords &records, const Error *error) override;
    void onGetDeviceReply(const NetworkRecord &record, const Error *error) override;
    void onSwitchDeviceReply(const Error *error) override;
    void onUseDhcpReply(const Error *error) override;
    void onKeepAddressReply(const Error *error) override;
    void onSetAddressReply(const Error *error) override;
    void onSetDnsReply(const Error *error) override;
    void onGetAccessPointsReply(const NetworkStations &stations, const Error *error) override;
    void onGetWifiReply(const NetworkWifi &wifi, const Error *error) override;
    void onSetNetworkReply(const Error *error) override;
    void onJoinNetworkReply(const Error *error) override;
    void onGetModemReply(const NetworkModem &modem, const Error *error) override;
    void onGetApnReply(const NetworkApn &apn, const Error *error) override;
    void onSetApnReply(const Error *error) override;
    void onGetPreferredReply(const std::string &kind, const Error *error) override;
    void onSetPreferredReply(const Error *error) override;
    void onPingReply(const NetworkTimes &times, const Error *error) override;

    const Take m_answered;
    const Take m_changed;
};

// Makes the one call of the proxy that it is there for. What throws sdbus::Error in it fails.
using NetworkRequest = std::function<void(NetworkProxy &service)>;

// Calls the service and waits at most `timeoutMs`. Any thread.
NetworkAnswer callNetwork(unsigned int timeoutMs, const NetworkRequest &request);

// The netT::Error of an answer, 0 if it is none.
int errorOf(const NetworkAnswer &answer);

// Calls the service and has `take` make the result of its answer. A netT::Error if there is none,
// or not of this type; `take` is not called then. Any thread.
template <typename Value, typename TakeValue>
int askNetwork(unsigned int timeoutMs, const NetworkRequest &request, const TakeValue &take)
{
    const NetworkAnswer answer = callNetwork(timeoutMs, request);
    const int error = errorOf(answer);
    if (error != 0)
        return error;
    const auto *value = std::get_if<Value>(&answer.value);
    return value == nullptr ? static_cast<int>(netT::ERR_FAILED) : take(*value);
}
// The same for a call that is answered by no value: 0 once it is.
int askNetwork(unsigned int timeoutMs, const NetworkRequest &request);

// The text as it is; throws sdbus::Error for one with a zero byte, which D-Bus would cut short.
std::string asText(const std::string &text);

// A text that the service tells; empty for one that is longer than any of its kind can be, which a
// page would lay out for seconds.
std::string toldText(const std::string &text);

// As the program takes them: of a list no more than a panel can have, and of each kind the last
// one. A page would show them one after the other, and put each one's address over what is being
// typed.
std::vector<netT::stAllNetInfo_tag> toRecords(const NetworkRecords &records);
netT::tag_atCollect toModemNews(const NetworkModem &modem);
const char *toSwitch(bool on); // "enable", "disable"
bool isCsq(int csq);

} // namespace board
