// Ports of the local services and the exchange with one, for CbbLocalUdp::request() of a panel.
#pragma once

#include <string>

namespace os {

// The UDP port on 127.0.0.1 behind an endpoint: the value of the environment variable
// SYSSET_UDP_ and the endpoint's name in capitals ("SYSSET_UDP_DOWNLOAD") if that is a port (1 to
// 65535, decimal digits alone), else where the service has moved to, else its usual port.
// -1 if no service of that name is known. Any thread, as long as nobody changes the environment
// meanwhile.
int localUdpPort(const std::string &endpoint);

// Has localUdpPort(`endpoint`) answer `port` from now on: for a service within this process that
// found its usual port taken. 0 stands for the usual port. Returns what localUdpPort(`endpoint`)
// answers now, which is another port if the environment names one. Any thread, with the same care
// for the environment.
int moveLocalUdpPort(const std::string &endpoint, int port);

// Sends `body` to `port` and waits for the reply, as request() has it: same results, same thread.
// A port that is none is ERR_ENDPOINT.
int exchangeDatagram(int port, const std::string &body, std::string &reply, unsigned int timeoutMs);

} // namespace os
