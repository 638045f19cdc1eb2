#include "platform/posix/Ipv4.h"

#include <arpa/inet.h>

namespace os {
namespace {

constexpr unsigned BITS = 32;
constexpr unsigned SHORTEST_WITHOUT_BROADCAST = 31; // RFC 3021
constexpr std::uint32_t ALL = 0xFFFFFFFF;

std::uint32_t maskBits(unsigned prefix)
{
    return prefix == 0 ? 0 : ALL << (BITS - prefix);
}

std::optional<unsigned> prefixOf(std::uint32_t mask)
{
    for (unsigned prefix = 1; prefix <= BITS; ++prefix) {
        if (maskBits(prefix) == mask)
            return prefix;
    }
    return std::nullopt;
}

// One that a device can have: not "this network", loopback, multicast or reserved (RFC 6890).
bool isUsable(std::uint32_t address)
{
    const std::uint32_t first = address >> 24;
    return first != 0 && first != 127 && first < 224;
}

bool isHost(std::uint32_t address, unsigned prefix)
{
    const std::uint32_t host = address & ~maskBits(prefix);
    return isUsable(address) &&
           (prefix >= SHORTEST_WITHOUT_BROADCAST || (host != 0 && host != ~maskBits(prefix)));
}

} // namespace

std::optional<std::uint32_t> parseIpv4(const std::string &text)
{
    in_addr parsed{};
    if (text.find('\0') != std::string::npos || ::inet_pton(AF_INET, text.c_str(), &parsed) != 1)
        return std::nullopt;
    return ntohl(parsed.s_addr);
}

std::optional<StaticAddress> checkAddress(const std::string &address, const std::string &mask,
                                          const std::string &gateway)
{
    const auto own = parseIpv4(address);
    const auto bits = parseIpv4(mask);
    const auto prefix = bits ? prefixOf(*bits) : std::nullopt;
    if (!own || !prefix || !isHost(*own, *prefix))
        return std::nullopt;
    const auto way = parseIpv4(gateway.empty() ? "0.0.0.0" : gateway);
    if (way == 0U)
        return StaticAddress{address, *prefix, ""};
    const bool isNear = way && ((*way ^ *own) & *bits) == 0;
    if (!isNear || *way == *own || !isHost(*way, *prefix))
        return std::nullopt;
    return StaticAddress{address, *prefix, gateway};
}

bool isServerOrEmpty(const std::string &text)
{
    const auto address = parseIpv4(text);
    return text.empty() || (address && isUsable(*address));
}

std::string maskOf(unsigned prefix)
{
    const in_addr mask{htonl(maskBits(prefix))};
    char text[INET_ADDRSTRLEN] = "";
    ::inet_ntop(AF_INET, &mask, text, sizeof text);
    return text;
}

} // namespace os
