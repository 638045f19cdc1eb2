// What the service and its helper cloudEnrol say to one another, each one message through a pipe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cloud {

// A certificate that is wanted.
struct EstRequest
{
    std::string server;
    std::uint16_t port = 0;
    std::string device;
    std::string salt;
    std::string trust;  // PEM; "" for what the system trusts
    std::string key;    // PEM
    std::string former; // the identity that is to be replaced, PEM; "" for a first certificate
};

enum class EstOutcome : std::int32_t {
    Issued,
    Failed,
    Distrust, // the service's own certificate is not accepted; the clock may be to blame
};

struct EstAnswer
{
    EstOutcome outcome = EstOutcome::Failed;
    std::string why;        // for people; "" if issued
    std::int64_t later = 0; // how long the service asks to be left alone, in seconds
    std::string identity;   // PEM, if issued
};

std::string toBytes(const EstRequest &request);
std::string toBytes(const EstAnswer &answer);
// Nothing for bytes of another shape.
std::optional<EstRequest> readRequest(const std::string &bytes);
std::optional<EstAnswer> readAnswer(const std::string &bytes);

} // namespace cloud
