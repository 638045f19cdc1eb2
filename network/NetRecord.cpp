#include "network/NetRecord.h"

#include <cstdio>

namespace {

void printAddress(const char *field, const std::string &received, const std::string &current)
{
    std::printf("paraMnetnode.%s = [%s][%s]\n", field, received.c_str(), current.c_str());
}

} // namespace

AddressTexts addressesOf(const netT::stAllNetInfo_tag &record)
{
    return {record.sIpAddr, record.sSubnetMask, record.sGateway, record.sPrefDns, record.sAlterDns};
}

bool saysEnable(const std::string &text)
{
    return text == "enable";
}

void printRecord(const netT::stAllNetInfo_tag &record, const AddressTexts &current)
{
    std::printf("paraMnetnode.sDevName = [%s]\n", record.sDevName.c_str());
    std::printf("paraMnetnode.sFunction = [%s]\n", record.sFunction.c_str());
    std::printf("paraMnetnode.bNetNormal = [%d]\n", record.bNetNormal);
    std::printf("paraMnetnode.sDhcp = [%s]\n", record.sDhcp.c_str());
    printAddress("sIpAddr", record.sIpAddr, current.sIpAddr);
    printAddress("sSubnetMask", record.sSubnetMask, current.sSubnetMask);
    printAddress("sGateway", record.sGateway, current.sGateway);
    printAddress("sPrefDns", record.sPrefDns, current.sPrefDns);
    printAddress("sAlterDns", record.sAlterDns, current.sAlterDns);
}
