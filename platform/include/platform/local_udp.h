// Requests to the panel's local services over UDP on the loopback interface.
#pragma once

#include <string>

namespace CBB {

// A service that other programs of the panel reach by a name, the endpoint. One request is one
// datagram, and so is its reply.
class CbbLocalUdp
{
public:
    enum Error {
        ERR_ENDPOINT = -1,   // no service of that name is known
        ERR_SYSTEM = -2,     // no socket, or the request is too long for a datagram
        ERR_NO_SERVICE = -3, // nobody listens there
        ERR_TIMEOUT = -4,    // no reply in time
    };

    // Sends `body` to `endpoint` and waits at most `timeoutMs` milliseconds for the reply, which
    // replaces `reply`; bytes both, of any content, at most 65507 (the largest datagram, udp(7)).
    // Only the service's own address can answer. A reply that comes after the time is dropped and
    // never taken for the answer to a later request.
    // Returns the reply's size, 0 or more; an Error, with `reply` emptied. Any thread.
    static int request(const std::string &endpoint, const std::string &body, std::string &reply,
                       unsigned int timeoutMs);
};

} // namespace CBB
