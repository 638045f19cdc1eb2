// The file by which a project binds a panel to the remote-access cloud, for loadCloudXML() of a
// panel.
#pragma once

#include "platform/net.h"

#include <string>

namespace os {

// Why a cloud file gives no configuration.
enum CloudFileError {
    CLOUD_NO_FILE = -1,  // there is none, or it cannot be read
    CLOUD_BAD_FILE = -2, // not such a file, incomplete, or above 64 KiB
    // The resource file that it names is not beside it, cannot be read, is empty or above 256 KiB.
    CLOUD_NO_RESOURCE = -3,
};

// Reads the file at `path`:
//
//   <?xml version="1.0" encoding="UTF-8"?>
//   <cloud version="1">
//     <region>China</region>
//     <server url="mqtt.example.com" port="8883"/>
//     <certificate url="cert.example.com" port="443"/>
//     <time url="ntp.example.com"/>
//     <resource file="root.pem"/>
//   </cloud>
//
// <region> ("China", "ASEAN" or "Europe") and <resource>, a plain file name, may be left out; a
// port is 1 to 65535. Elements of other names are skipped; a document type, and with it every
// entity of the file's own, is refused. Returns 0 and fills addresses and ports of `config` and
// `region`, or a CloudFileError, both untouched. Blocks for the reading. Any thread.
int readCloudFile(const std::string &path, netT::CloudConfig &config, std::string &region);

// The certificates that alone vouch for the cloud's servers: the bytes of the resource file that
// the file at `path` names; empty if it names none. Returns 0, or a CloudFileError, `pem`
// untouched. Blocks for the reading. Any thread.
int readCloudTrust(const std::string &path, std::string &pem);

} // namespace os
