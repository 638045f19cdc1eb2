// The network service and its devices in the state tree.
#pragma once

#include "platform/net.h"
#include "platform/sim/Json.h"

#include <string>

namespace sim {

// Whether the network service runs.
bool serviceRuns(const Json &state);

// The text field `key` of a record.
const std::string &text(const Json &record, const char *key);

// The record of a device, null if there is none of that name.
Json *findDevice(Json &state, const std::string &name);
const Json *findDevice(const Json &state, const std::string &name);
// The first device of a kind ("WIFI") that is plugged in, null if there is none.
Json *presentDevice(Json &state, const std::string &kind);

bool isPresent(const Json &device);
bool isOn(const Json &device);
bool usesDhcp(const Json &device);
// Whether its cable is plugged in, and for Wi-Fi a network is joined.
bool hasLink(const Json &state, const Json &device);
bool works(const Json &state, const Json &device);

// The device's address becomes what net.lease has for it, DNS servers set by hand excepted.
void takeLease(Json &state, Json &device);
// The device's address becomes the one that was set by hand, as far as one was.
void takeStatic(const Json &state, Json &device);
void dropAddress(Json &device);
// Remembers the device's present address as set by hand.
void keepAsStatic(Json &state, const Json &device);
// What is remembered by hand for the device, empty fields if nothing is.
Json &staticAddress(Json &state, const Json &device);

// The record as the service reports it: a single known DNS server stands in both fields.
netT::stAllNetInfo_tag toRecord(const Json &device);

} // namespace sim
