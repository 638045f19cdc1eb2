// What the service connects with, as its client says.
#pragma once

#include <string>

namespace cloud {

struct Configuration
{
    std::string server; // MQTT; host names or dotted addresses, as the next two
    std::string certificateServer;
    std::string timeServer;
    int port = 0;
    int certificatePort = 0;
    std::string device; // the panel's name for the cloud
    std::string salt;   // its password at the certificate service; in no log
    std::string requestTopic;
    std::string responseTopic;
    std::string trust; // PEM; "" for what the system trusts

    bool operator==(const Configuration &other) const;
};

// Whether each value is one that org.sysset.Cloud1.xml allows.
bool isSound(const Configuration &configuration);

} // namespace cloud
