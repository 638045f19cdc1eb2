// What the program has asked of the simulated panel, for tests.
#pragma once

#include "platform/sim/Panel.h"

#include <QStringList>

// The arguments of all calls of an operation, as JSON, on whichever thread, oldest first.
inline QStringList callsOf(const std::string &operation)
{
    QStringList found;
    for (const auto &call : sim::panel().calls()) {
        if (call.at("op") == operation)
            found << QString::fromStdString(call.at("args").dump());
    }
    return found;
}

// Same of the latest one; empty if there is none.
inline QString lastCall(const std::string &operation)
{
    const QStringList found = callsOf(operation);
    return found.isEmpty() ? QString() : found.last();
}

// All calls of the network service, such as `startDhcp["eth0",false,5000]`, oldest first.
inline QStringList serviceCalls()
{
    QStringList all;
    for (const auto &call : sim::panel().calls()) {
        const std::string op = call.at("op");
        if (op.rfind("netT.", 0) == 0 && op.find("CAsync") == std::string::npos)
            all << QString::fromStdString(op.substr(5) + call.at("args").dump());
    }
    return all;
}
