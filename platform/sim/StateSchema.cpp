#include "platform/sim/StateSchema.h"

#include <cstdint>
#include <limits>

namespace sim {
namespace {

constexpr const char *SCHEMA_TEXT = R"({
"machine": {"hmiType": "text?", "sn": "text?", "mac": "text?", "deviceId": "text?",
            "product": "text?", "remote": "0..1?", "cpuId": "text?", "boardModel": "text?",
            "hardwareReset": "0..1"},
"lcd": {"width": "16..8192", "height": "16..8192", "brightness": "1..100"},
"buzzer": {"enabled": "0..1", "tone": "1..5", "time": "0..1000", "opens": "0..2147483647",
           "waiting": "0..2147483647", "beeps": ["0..2147483647"]},
"words": {"#": "0..65535?"},
"clock": {"allowSet": "0..1", "offset": "-99999999999..99999999999", "written": ["0..65535"]},
"net": {
  "server": "bool", "priority": "text", "serverAddr": "text",
  "devices": [{"sDevName": "text", "sNetType": "text=ETH", "sDhcp": "text=disable",
               "sMacAddr": "text", "sIpAddr": "text", "sSubnetMask": "text", "sGateway": "text",
               "sPrefDns": "text", "sAlterDns": "text", "sFunction": "text=enable",
               "bNetNormal": "0..1", "present": "bool=true"}],
  "cable": {"*": "-2147483648..0"},
  "up": {"*": "bool"},
  "ping": {"*": {"any of": ["-2147483648..-1",
                            {"min": "0..60000", "avg": "0..60000", "max": "0..60000",
                             "lost": "0..100"}]}},
  "lease": {"*": {"sIpAddr": "text", "sSubnetMask": "text", "sGateway": "text",
                  "sPrefDns": "text", "sAlterDns": "text"}},
  "statics": {"*": {"sIpAddr": "text", "sSubnetMask": "text", "sGateway": "text",
                    "sPrefDns": "text", "sAlterDns": "text"}}},
"wifi": {"aps": [{"id": "-2147483648..2147483647", "level": "-2147483648..2147483647",
                  "ssid": "text", "text": "text", "security": "-2147483648..2147483647"}],
         "away": [{"id": "-2147483648..2147483647", "level": "-2147483648..2147483647",
                   "ssid": "text", "text": "text", "security": "-2147483648..2147483647"}],
         "drift": "0..600000",
         "state": "0..7",
         "user": {"ssid": "text", "password": "text", "security": "-2147483648..2147483647",
                  "id": "-2147483648..2147483647"},
         "signal": "-2147483648..2147483647", "passwords": {"*": "text"}},
"modem": {"at": {"texts": ["text", 9], "numbers": ["-2147483648..2147483647", 5], "last": "text"},
          "apn": {"name": "text", "auth": "text", "user": "text", "password": "text",
                  "mode": "text"},
          "csq": "-2147483648..2147483647", "ccid": "text", "dialUp": "0..1"},
"cloud": {"load": "-2147483648..2147483647?", "status": "-2147483648..2147483647",
          "text": "text", "started": "bool",
          "config": {"sUrl": "text", "sCertUrl": "text", "sNtpUrl": "text",
                     "nPort": "-2147483648..2147483647", "nCertPort": "-2147483648..2147483647",
                     "sDeviceId": "text", "sSalt": "text", "sRequestTopic": "text",
                     "sResponseTopic": "text"}},
"update": {"model": "text", "error": "-2147483648..2147483647?", "steps": ["0..100"],
           "stepTime": "0..600000", "result": "-2147483648..2147483647",
           "projectVersion": "0..4294967295", "firmwareVersion": "0..4294967295",
           "installed": {"project": "text", "firmware": "text"},
           "silent": "bool", "late": "0..600000",
           "reply": "whole|empty|short|long|unterminated|noise", "dieAt": "0..100?",
           "alive": "bool", "port": "0..65535",
           "requests": [{"command": "-2147483648..2147483647", "payload": "text"}]},
"plc": {"file": {"program": "bool", "parameters": "bool", "mask": "bool", "memory": "bool",
                 "cam": "bool", "password": "bool", "protect": "bool",
                 "read": "-2147483648..2147483647"},
        "hasPassword": "0..1", "results": {"*": ["-2147483648..2147483647"]}, "steps": ["text"],
        "line": {"answer": "right|none|noise|endless|wrongSum|late",
                 "spoil": "-1..2147483647", "lateMs": "0..60000", "refuse": "0..255",
                 "paced": "bool", "frames": "0..2147483647", "received": "0..2147483647"}},
"versions": [{"name": "text", "version": "text"}],
"partition": {"writable": "bool", "remounts": ["-2147483648..2147483647"]},
"reboots": ["-2147483648..2147483647"]
})";

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

struct Leaf
{
    std::string kind;
    std::string initial;
    bool nullable = false;
};

Leaf splitLeaf(const std::string &shape)
{
    Leaf leaf;
    const auto equals = shape.find('=');
    leaf.kind = shape.substr(0, equals);
    if (equals != std::string::npos)
        leaf.initial = shape.substr(equals + 1);
    if (leaf.kind.back() == '?') {
        leaf.nullable = true;
        leaf.kind.pop_back();
    }
    return leaf;
}

struct Range
{
    std::int64_t low;
    std::int64_t high;
};

Range rangeOf(const std::string &kind)
{
    return {std::stoll(kind), std::stoll(kind.substr(kind.find("..") + 2))};
}

bool isRange(const std::string &kind)
{
    return kind.find("..") != std::string::npos;
}

// Bounds that stand for "any whole number" are not worth naming to a person.
std::string sayRange(const Range &range)
{
    if (range.low == std::numeric_limits<int>::min() &&
        range.high == std::numeric_limits<int>::max())
        return "a whole number";
    return "a whole number from " + std::to_string(range.low) + " to " + std::to_string(range.high);
}

std::string sayKind(const Leaf &leaf)
{
    std::string said = "one of " + leaf.kind;
    if (leaf.kind == "text")
        said = "a text";
    else if (leaf.kind == "bool")
        said = "true or false";
    else if (isRange(leaf.kind))
        said = sayRange(rangeOf(leaf.kind));
    return leaf.nullable ? said + ", or null" : said;
}

bool inRange(const Json &value, const Range &range)
{
    if (!value.is_number_integer())
        return false;
    if (value.is_number_unsigned() &&
        value.get<std::uint64_t>() > static_cast<std::uint64_t>(range.high < 0 ? 0 : range.high))
        return false;
    const auto number = value.get<std::int64_t>();
    return number >= range.low && number <= range.high;
}

bool isOneOf(const std::string &options, const Json &value)
{
    return value.is_string() &&
           ("|" + options + "|").find("|" + value.get<std::string>() + "|") != std::string::npos;
}

bool fits(const Leaf &leaf, const Json &value)
{
    if (value.is_null())
        return leaf.nullable;
    if (leaf.kind == "text")
        return value.is_string();
    if (leaf.kind == "bool")
        return value.is_boolean();
    return isRange(leaf.kind) ? inRange(value, rangeOf(leaf.kind)) : isOneOf(leaf.kind, value);
}

Json initialLeaf(const Leaf &leaf)
{
    if (leaf.kind == "text")
        return leaf.initial;
    if (leaf.kind == "bool")
        return leaf.initial == "true";
    if (!isRange(leaf.kind))
        return leaf.kind.substr(0, leaf.kind.find('|'));
    const Range range = rangeOf(leaf.kind);
    return inRange(0, range) ? 0 : range.high < 0 ? range.high : range.low;
}

Json initialObject(const Json &shape)
{
    if (shape.contains("any of"))
        return initialValue(shape["any of"].front());
    Json value = Json::object();
    if (!shape.contains("*") && !shape.contains("#"))
        for (const auto &[key, field] : shape.items())
            value[key] = initialValue(field);
    return value;
}

} // namespace

const Json &stateSchema()
{
    static const Json schema = Json::parse(SCHEMA_TEXT);
    return schema;
}

Json defaultState()
{
    Json state = Json::parse(DEFAULTS_TEXT);
    state["words"] = defaultWords();
    return state;
}

Json initialValue(const Json &shape)
{
    if (shape.is_string())
        return initialLeaf(splitLeaf(shape.get<std::string>()));
    if (shape.is_object())
        return initialObject(shape);
    return shape.size() == 2 ? Json(shape[1].get<std::size_t>(), initialValue(shape[0]))
                             : Json::array();
}

void checkLeaf(const std::string &shape, const Json &value, const std::string &path)
{
    const Leaf leaf = splitLeaf(shape);
    if (!fits(leaf, value))
        throw BadRequest(path + ": must be " + sayKind(leaf));
}

} // namespace sim
