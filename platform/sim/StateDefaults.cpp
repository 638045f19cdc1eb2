#include "platform/sim/StateDefaults.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sim {
namespace {

constexpr const char *DEFAULTS_TEXT = R"({
"machine": {"hmiType": "KV070T", "sn": "A2108150042", "mac": "02:00:5E:10:00:01",
            "deviceId": "0210 8150 0420 7001", "product": "P-070T-0042", "remote": 1,
            "cpuId": "3c00210081500042", "boardModel": "KV070T", "hardwareReset": 1},
"lcd": {"width": 1024, "height": 600, "brightness": 100},
"buzzer": {"enabled": 1, "tone": 3, "time": 100, "opens": 0, "waiting": 0, "beeps": []},
"clock": {"allowSet": 1, "offset": 0, "written": []},
"net": {
  "server": true, "priority": "ETH", "serverAddr": "cloud.example.com",
  "devices": [
    {"sDevName": "eth0", "sNetType": "ETH", "sDhcp": "enable", "sMacAddr": "02:00:5E:10:00:01",
     "sIpAddr": "192.168.1.50", "sSubnetMask": "255.255.255.0", "sGateway": "192.168.1.1",
     "sPrefDns": "192.168.1.1", "sAlterDns": "192.168.1.1", "sFunction": "enable",
     "bNetNormal": 1, "present": true},
    {"sDevName": "wlan0", "sNetType": "WIFI", "sDhcp": "enable", "sMacAddr": "02:00:5E:10:00:02",
     "sIpAddr": "192.168.2.60", "sSubnetMask": "255.255.255.0", "sGateway": "192.168.2.1",
     "sPrefDns": "192.168.2.1", "sAlterDns": "192.168.2.1", "sFunction": "enable",
     "bNetNormal": 1, "present": true},
    {"sDevName": "usb0", "sNetType": "4G", "sDhcp": "enable", "sMacAddr": "02:00:5E:10:00:03",
     "sIpAddr": "10.64.0.2", "sSubnetMask": "255.255.255.252", "sGateway": "10.64.0.1",
     "sPrefDns": "10.64.0.1", "sAlterDns": "10.64.0.1", "sFunction": "enable",
     "bNetNormal": 1, "present": true}],
  "cable": {"eth0": 0, "wlan0": 0, "usb0": 0},
  "up": {"eth0": true, "wlan0": true, "usb0": true},
  "ping": {"*": {"min": 8, "avg": 12, "max": 20, "lost": 0}},
  "lease": {
    "eth0": {"sIpAddr": "192.168.1.50", "sSubnetMask": "255.255.255.0",
             "sGateway": "192.168.1.1", "sPrefDns": "192.168.1.1", "sAlterDns": ""},
    "wlan0": {"sIpAddr": "192.168.2.60", "sSubnetMask": "255.255.255.0",
              "sGateway": "192.168.2.1", "sPrefDns": "192.168.2.1", "sAlterDns": ""},
    "usb0": {"sIpAddr": "10.64.0.2", "sSubnetMask": "255.255.255.252",
             "sGateway": "10.64.0.1", "sPrefDns": "10.64.0.1", "sAlterDns": ""}},
  "statics": {}},
"wifi": {
  "aps": [{"id": 0, "level": 88, "ssid": "Workshop", "text": "", "security": 4},
          {"id": 1, "level": 63, "ssid": "Office", "text": "", "security": 4},
          {"id": 2, "level": 47, "ssid": "Guests", "text": "", "security": 0},
          {"id": 3, "level": 12, "ssid": "Warehouse", "text": "", "security": 3}],
  "away": [], "drift": 0, "state": 7, "user": {"ssid": "Workshop", "password": "workshop1", "security": 4, "id": 0},
  "signal": 88,
  "passwords": {"Workshop": "workshop1", "Office": "office123", "Warehouse": "warehouse1"}},
"modem": {
  "at": {"texts": ["89860012345678901234", "460001234567890", "Operator", "LTE",
                   "860000000000017", "1.0", "", "", ""],
         "numbers": [22, 1, 0, 0, 0], "last": ""},
  "apn": {"name": "", "auth": "none", "user": "", "password": "", "mode": "disable"},
  "csq": 22, "ccid": "89860012345678901234", "dialUp": 1},
"cloud": {"load": null, "status": -1, "text": "", "started": false,
          "config": {"sUrl": "", "sCertUrl": "", "sNtpUrl": "", "nPort": 0, "nCertPort": 0,
                     "sDeviceId": "", "sSalt": "", "sRequestTopic": "", "sResponseTopic": ""}},
"update": {"model": "KV070T", "error": null, "steps": [10, 30, 50, 70, 90, 100], "stepTime": 0,
           "result": 0, "projectVersion": 100, "firmwareVersion": 100,
           "installed": {"project": "", "firmware": ""}, "silent": false, "late": 0,
           "reply": "whole", "dieAt": null, "alive": true, "port": 0, "requests": []},
"plc": {"file": {"program": true, "parameters": true, "mask": true, "memory": true, "cam": true,
                 "password": false, "protect": false, "read": 0},
        "hasPassword": 0, "results": {}, "steps": [],
        "line": {"answer": "right", "spoil": -1, "lateMs": 4500, "refuse": 0, "paced": false,
                 "frames": 0, "received": 0}},
"versions": [{"name": "Runtime", "version": "2.4.1"}, {"name": "Network service", "version": "1.8.0"},
             {"name": "Update service", "version": "1.3.2"},
             {"name": "PLC driver", "version": "3.0.7"},
             {"name": "Touch driver", "version": "1.1.0"},
             {"name": "Board support", "version": "2023.11"}],
"partition": {"writable": false, "remounts": []},
"reboots": []
})";

// Backlight off-time and brightness; buzzer off (0 reads as on), tone and time.
constexpr const char *SETTINGS_WORDS =
    R"({"10590": 600, "10591": 100, "10612": 0, "10613": 3, "10614": 100})";

// Eleven words a port: connection, baud rate, data bits, stop bits, parity, wait and read
// time-out, retries, retry time-out, own and other station.
void addPort(Json &words, int base, const std::vector<int> &values)
{
    for (int i = 0; i < 11; ++i)
        words[std::to_string(base + i)] = values.empty() ? 0 : values[static_cast<std::size_t>(i)];
}

Json defaultWords()
{
    Json words = Json::parse(SETTINGS_WORDS);
    for (const int base : {10072, 10083, 10105, 10120})
        addPort(words, base, {});
    addPort(words, 10061, {2, 3, 8, 1, 0, 20, 100, 3, 2, 1, 1});
    addPort(words, 10094, {1, 7, 8, 1, 2, 50, 500, 3, 5, 1, 2});
    return words;
}

} // namespace

Json defaultState()
{
    Json state = Json::parse(DEFAULTS_TEXT);
    state["words"] = defaultWords();
    return state;
}

} // namespace sim
