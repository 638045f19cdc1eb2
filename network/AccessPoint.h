// What an access point's record says.
#pragma once

#include "platform/net.h"

// Whether two records are of the same network: by the name alone, since joining goes by the name.
inline bool isSameNetwork(const netT::stApInfo_tag &one, const netT::stApInfo_tag &other)
{
    return one.sSsid == other.sSsid;
}

// Whether joining the network takes a password.
inline bool isSecured(const netT::stApInfo_tag &accessPoint)
{
    return accessPoint.nSecurity >= 2;
}

// Whether `level` is a signal level.
inline bool isLevel(int level)
{
    return level >= 0 && level <= 100;
}
