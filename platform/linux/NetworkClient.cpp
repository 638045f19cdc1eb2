#include "platform/linux/NetworkClient.h"

#include <algorithm>
#include <array>
#include <utility>

namespace board {
namespace {

constexpr const char *PATH = "/org/sysset/Network1";
constexpr const char *NO_DEVICE = "org.sysset.Network1.Error.NoDevice";
constexpr const char *BAD_ANSWER = "org.freedesktop.DBus.Error.InvalidSignature";
constexpr std::size_t MOST_RECORDS = 64;
constexpr std::size_t LONGEST_TEXT = 512;
constexpr int HIGHEST_CSQ = 31;
constexpr int UNKNOWN_CSQ = 99;

// The service is not there, or has gone before it answered.
constexpr std::array<const char *, 6> GONE = {
    NO_BUS,
    "org.freedesktop.DBus.Error.ServiceUnknown",
    "org.freedesktop.DBus.Error.NameHasNoOwner",
    "org.freedesktop.DBus.Error.Disconnected",
    "org.freedesktop.DBus.Error.NoReply",
    "System.Error.ENOTCONN",
};

netT::stAllNetInfo_tag toRecord(const NetworkRecord &record)
{
    const auto &[name, kind, hardware, address, mask, gateway, dns, secondDns, present, on, up,
                 linked, dhcp, normal] = fieldsOf(record);
    netT::stAllNetInfo_tag info;
    info.sDevName = toldText(name);
    info.sNetType = toldText(kind);
    info.sDhcp = toSwitch(dhcp);
    info.sMacAddr = toldText(hardware);
    info.sIpAddr = toldText(address);
    info.sSubnetMask = toldText(mask);
    info.sGateway = toldText(gateway);
    info.sPrefDns = toldText(dns);
    info.sAlterDns = toldText(secondDns);
    info.sFunction = toSwitch(on);
    info.bNetNormal = normal ? 1 : 0;
    return info;
}

} // namespace

NetworkProxy::NetworkProxy(sdbus::IConnection &bus, Take answered, Take changed)
    : ProxyInterfaces(bus, NETWORK_SERVICE, PATH),
      m_answered(std::move(answered)),
      m_changed(std::move(changed))
{
}

// The library takes a message without any content for one with default values.
template <typename Value>
void NetworkProxy::take(const Value &value, const Error *error)
{
    const sdbus::Message *message = getProxy().getCurrentlyProcessedMessage();
    NetworkAnswer answer;
    answer.sender = message->getSender();
    if (error != nullptr)
        answer.error = error->getName();
    else if (!std::is_same_v<Value, std::monostate> && message->isEmpty())
        answer.error = BAD_ANSWER;
    else
        answer.value = value;
    m_answered(std::move(answer));
}

template <typename Value>
void NetworkProxy::news(const Value &value)
{
    const sdbus::Message *message = getProxy().getCurrentlyProcessedMessage();
    if (m_changed && !message->isEmpty())
        m_changed({value, std::string(), message->getSender()});
}

void NetworkProxy::onDevicesChanged(const NetworkRecords &records)
{
    news(records);
}
void NetworkProxy::onModemChanged(const NetworkModem &modem)
{
    news(modem);
}
void NetworkProxy::onGetDevicesReply(const NetworkRecords &records, const Error *error)
{
    take(records, error);
}
void NetworkProxy::onGetDeviceReply(const NetworkRecord &record, const Error *error)
{
    take(record, error);
}
void NetworkProxy::onSwitchDeviceReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onUseDhcpReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onKeepAddressReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onSetAddressReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onSetDnsReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onGetAccessPointsReply(const NetworkStations &stations, const Error *error)
{
    take(stations, error);
}
void NetworkProxy::onGetWifiReply(const NetworkWifi &wifi, const Error *error)
{
    take(wifi, error);
}
void NetworkProxy::onSetNetworkReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onJoinNetworkReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onGetModemReply(const NetworkModem &modem, const Error *error)
{
    take(modem, error);
}
void NetworkProxy::onGetApnReply(const NetworkApn &apn, const Error *error)
{
    take(apn, error);
}
void NetworkProxy::onSetApnReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onGetPreferredReply(const std::string &kind, const Error *error)
{
    take(kind, error);
}
void NetworkProxy::onSetPreferredReply(const Error *error)
{
    take(std::monostate(), error);
}
void NetworkProxy::onPingReply(const NetworkTimes &times, const Error *error)
{
    take(times, error);
}

// The answer is shared with the proxy, as it may come late.
NetworkAnswer callNetwork(unsigned int timeoutMs, const NetworkRequest &request)
{
    const auto answer = std::make_shared<NetworkAnswer>();
    const std::string error = systemBus().exchange(
        {NETWORK_SERVICE, PATH, NETWORK_SERVICE, ""}, std::chrono::milliseconds(timeoutMs),
        [&](sdbus::IConnection &bus, const std::shared_ptr<SystemBus::Exchange> &exchange) {
            const auto proxy = std::make_shared<NetworkProxy>(bus, [=](NetworkAnswer taken) {
                *answer = std::move(taken);
                exchange->end(answer->error);
            });
            request(*proxy);
            return proxy;
        });
    if (error.empty())
        return std::move(*answer);
    NetworkAnswer failure;
    failure.error = error;
    return failure;
}

int errorOf(const NetworkAnswer &answer)
{
    if (answer.error.empty())
        return 0;
    if (answer.error == NO_DEVICE)
        return netT::ERR_NO_DEVICE;
    if (answer.error == NO_ANSWER)
        return netT::ERR_TIMEOUT;
    const bool isGone = std::find(GONE.begin(), GONE.end(), answer.error) != GONE.end();
    return isGone ? netT::ERR_NO_SERVICE : netT::ERR_FAILED;
}

int askNetwork(unsigned int timeoutMs, const NetworkRequest &request)
{
    return askNetwork<std::monostate>(timeoutMs, request, [](const std::monostate &) { return 0; });
}

std::string asText(const std::string &text)
{
    if (text.find('\0') != std::string::npos)
        throw sdbus::Error("org.freedesktop.DBus.Error.InvalidArgs", "zero byte in a text");
    return text;
}

std::string toldText(const std::string &text)
{
    return text.size() > LONGEST_TEXT ? std::string() : text;
}

std::vector<netT::stAllNetInfo_tag> toRecords(const NetworkRecords &records)
{
    std::vector<netT::stAllNetInfo_tag> list;
    for (std::size_t i = 0; i < std::min(records.size(), MOST_RECORDS); ++i) {
        const netT::stAllNetInfo_tag record = toRecord(records[i]);
        const auto former = std::find_if(list.begin(), list.end(), [&](const auto &listed) {
            return listed.sNetType == record.sNetType;
        });
        if (former != list.end())
            list.erase(former);
        list.push_back(record);
    }
    return list;
}

netT::tag_atCollect toModemNews(const NetworkModem &modem)
{
    const auto &[csq, iccid, imei, network, attached] = fieldsOf(modem);
    netT::tag_atCollect news;
    news.texts[0] = toldText(iccid);
    news.texts[4] = toldText(imei);
    news.numbers[0] = isCsq(csq) ? csq : UNKNOWN_CSQ;
    return news;
}

const char *toSwitch(bool on)
{
    return on ? "enable" : "disable";
}

bool isCsq(int csq)
{
    return (csq >= 0 && csq <= HIGHEST_CSQ) || csq == UNKNOWN_CSQ;
}

} // namespace board
