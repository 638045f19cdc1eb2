// How long calls wait for an answer of the network service, in milliseconds.
#pragma once

constexpr unsigned int NET_SERVICE_TIMEOUT_MS = 5000;
// Of what the service keeps in store of the 4G modem.
constexpr unsigned int MODEM_TIMEOUT_MS = 1000;
// Of a ping, all its probes together.
constexpr unsigned int PING_TIMEOUT_MS = 50000;
