// IPv4 addresses as an operator types them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace os {

struct StaticAddress
{
    std::string address;
    unsigned prefix = 0;
    std::string gateway; // "" for none
};

// Host byte order; nothing if the text is no dotted address of four numbers.
std::optional<std::uint32_t> parseIpv4(const std::string &text);

// Nothing for what no device can use: an address, mask or gateway that is none; a mask with holes,
// or of 0 bits; an address that is its network's own or its broadcast address, of the loopback
// network, or of a multicast one; a gateway that is not in the address's network, or is the address
// itself. "" and 0.0.0.0 say that there is no gateway.
std::optional<StaticAddress> checkAddress(const std::string &address, const std::string &mask,
                                          const std::string &gateway);

// Whether it is "", or an address that a DNS server can have.
bool isServerOrEmpty(const std::string &text);

// The mask of that many bits, 0 to 32, dotted.
std::string maskOf(unsigned prefix);

} // namespace os
