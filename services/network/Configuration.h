#pragma once

#include <string>

namespace network {

// What panel.conf says in its section [network].
struct Configuration
{
    std::string ethernet; // the Ethernet device that the program's page shows, "" for the first
};

// One that is missing has the defaults; what is wrong in it is told to the journal.
Configuration readConfiguration(const std::string &path);

} // namespace network
