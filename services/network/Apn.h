// The operator's access point settings in a profile of type gsm. Pure functions on the profile.
#pragma once

#include <NetworkManager.h>
#include <string>

namespace network {

struct Apn
{
    std::string name; // "" for none of its own: the network chooses
    std::string auth; // "none", "pap", "chap"; "" for what the network asks for
    std::string user;
    std::string password;
    bool own = false; // these settings; else the network's default, these only kept
};

// What is dialled with, and what is only kept:
//   own, "pap" "chap"  gsm.apn, gsm.username, gsm.password; ppp refuses the other ways
//   own, ""            the same, ppp refuses nothing
//   own, "none"        gsm.apn; user and password kept. ppp refuses nothing, as many modems ask
//                      for a login themselves and take any, an empty one too
//   default            none of it; all kept
// gsm.apn is left out for a default: the modem's or the network's subscription decides (3GPP TS
// 23.060, 9.2.1). gsm.auto-config is off, as it fails without mobile-broadband-provider-info.
// Names and users are kept as user data ("panel-apn.name"), which all users of the bus may read. A
// kept password is a secret of the profile as gsm.password is, but must not be that one, which
// would be sent: it is 802-1x.password, a setting that a modem's connection never looks at. A
// refused login is tried again once (connection.autoconnect-retries) before NetworkManager pauses.
//
// False, and the profile as it was: an authentication of another kind; a text that is not UTF-8,
// has control characters or more than 255 bytes (pppd(8), MAXNAMELEN, MAXSECRETLEN); for own
// settings a name that NetworkManager refuses: over 64 characters, or others than letters, digits,
// ".", "_" and "-" inside of blanks, which are cut off.
bool applyApn(NMConnection *profile, const Apn &apn);

// The setting whose secret the password is, as nm_remote_connection_get_secrets_async() takes it;
// nullptr if there is none. A profile from NMClient has its secrets only after that and
// nm_connection_update_secrets(). For one of another origin without a password that call fails with
// NM_AGENT_MANAGER_ERROR_NO_SECRETS.
const char *apnSecretSetting(NMConnection *profile);

// What applyApn() was given last, or what a profile of another origin dials with.
Apn readApn(NMConnection *profile);

} // namespace network
