// Reading and printing the network service's records.
#pragma once

#include "platform/net.h"

#include <string>

// The five addresses of a device as dotted texts.
struct AddressTexts
{
    std::string sIpAddr;
    std::string sSubnetMask;
    std::string sGateway;
    std::string sPrefDns;
    std::string sAlterDns;
};

AddressTexts addressesOf(const netT::stAllNetInfo_tag &record);

// "enable" in a record's sFunction or sDhcp.
bool saysEnable(const std::string &text);

// Prints a record on standard output, a line a field, its addresses beside the page's `current`.
void printRecord(const netT::stAllNetInfo_tag &record, const AddressTexts &current);
