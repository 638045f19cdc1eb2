// The addresses that an operator gives a device.
#pragma once

#include "services/network/Network.h"
#include "services/network/Profile.h"

#include <string>

namespace network {

// `done` is called once the profile is kept; NoDevice for a device that is not there.
class Addressing
{
public:
    explicit Addressing(Network &network) : m_network(network) {}

    void useDhcp(const std::string &device, Done done);
    // The address in force becomes the static one.
    void keepAddress(const std::string &device, Done done);
    // Failed for what os::checkAddress() refuses.
    void setAddress(const std::string &device, const std::string &address, const std::string &mask,
                    const std::string &gateway, Done done);
    // Failed for what os::isServerOrEmpty() refuses.
    void setDns(const std::string &device, const Servers &servers, Done done);

private:
    void change(const std::string &device, Links::Edit edit, Done done);

    Network &m_network;
};

} // namespace network
