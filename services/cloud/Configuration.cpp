#include "services/cloud/Configuration.h"

#include <algorithm>
#include <mosquitto.h>
#include <string_view>
#include <tuple>

namespace cloud {
namespace {

constexpr std::size_t LONGEST_HOST = 253; // RFC 1035, as text
constexpr std::size_t LONGEST_NAME = 64;  // ub-common-name, RFC 5280
constexpr std::size_t LONGEST_TOPIC = 256;
constexpr std::size_t LARGEST_TRUST = 262144;
constexpr int LAST_PORT = 65535;

auto fieldsOf(const Configuration &of)
{
    return std::tie(of.server, of.certificateServer, of.timeServer, of.port, of.certificatePort,
                    of.device, of.salt, of.requestTopic, of.responseTopic, of.trust);
}

bool isHost(const std::string &text)
{
    constexpr std::string_view KNOWN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_";
    return !text.empty() && text.size() <= LONGEST_HOST && text.front() != '-' &&
           text.find_first_not_of(KNOWN) == std::string::npos;
}

bool isPort(int port)
{
    return port >= 1 && port <= LAST_PORT;
}

bool isPrintable(const std::string &text)
{
    return !text.empty() && text.size() <= LONGEST_NAME &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool isTopic(const std::string &text)
{
    return !text.empty() && text.size() <= LONGEST_TOPIC &&
           mosquitto_pub_topic_check2(text.data(), text.size()) == MOSQ_ERR_SUCCESS;
}

} // namespace

bool Configuration::operator==(const Configuration &other) const
{
    return fieldsOf(*this) == fieldsOf(other);
}

bool isSound(const Configuration &of)
{
    return isHost(of.server) && isHost(of.certificateServer) && isHost(of.timeServer) &&
           isPort(of.port) && isPort(of.certificatePort) && isPrintable(of.device) &&
           of.device.find_first_of(": ") == std::string::npos && isPrintable(of.salt) &&
           isTopic(of.requestTopic) && isTopic(of.responseTopic) &&
           of.trust.size() <= LARGEST_TRUST;
}

} // namespace cloud
