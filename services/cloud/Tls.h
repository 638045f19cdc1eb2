// How the panel speaks TLS with the MQTT server.
#pragma once

#include "services/cloud/OpenSsl.h"

#include <string>

namespace cloud {

// What a handshake that fails has to say.
struct TlsFault
{
    std::string why;         // "" for none
    bool isDistrust = false; // the server's certificate is not accepted
    bool isRefused = false;  // the server does not accept the panel's
};

// TLS 1.2 and up without renegotiation; the server's certificate is verified, its name too, against
// the certificates in `trust`, or those of the system if that is empty; the panel's own is that of
// `identity`, as Identity has it. What goes wrong in a handshake is written to `fault`, which
// outlives the context. Null, with `fault` filled, if any of it cannot be.
Context makeContext(const std::string &host, const std::string &trust, const std::string &identity,
                    TlsFault &fault);

} // namespace cloud
