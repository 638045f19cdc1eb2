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
"wifi": {"aps": [{"id": "int", "level": "int",
                  "ssid": "text", "text": "text", "security": "int"}],
         "away": [{"id": "int", "level": "int",
                   "ssid": "text", "text": "text", "security": "int"}],
         "drift": "0..600000",
         "state": "0..7",
         "user": {"ssid": "text", "password": "text", "security": "int",
                  "id": "int"},
         "signal": "int", "passwords": {"*": "text"}},
"modem": {"at": {"texts": ["text", 9], "numbers": ["int", 5], "last": "text"},
          "apn": {"name": "text", "auth": "text", "user": "text", "password": "text",
                  "mode": "text"},
          "csq": "int", "ccid": "text", "dialUp": "0..1"},
"cloud": {"load": "int?", "status": "int",
          "text": "text", "started": "bool",
          "config": {"sUrl": "text", "sCertUrl": "text", "sNtpUrl": "text",
                     "nPort": "int", "nCertPort": "int",
                     "sDeviceId": "text", "sSalt": "text", "sRequestTopic": "text",
                     "sResponseTopic": "text"}},
"update": {"model": "text", "error": "int?", "steps": ["0..100"],
           "stepTime": "0..600000", "result": "int",
           "projectVersion": "0..4294967295", "firmwareVersion": "0..4294967295",
           "installed": {"project": "text", "firmware": "text"},
           "silent": "bool", "late": "0..600000",
           "reply": "whole|empty|short|long|unterminated|noise", "dieAt": "0..100?",
           "alive": "bool", "port": "0..65535",
           "requests": [{"command": "int", "payload": "text"}]},
"plc": {"file": {"program": "bool", "parameters": "bool", "mask": "bool", "memory": "bool",
                 "cam": "bool", "password": "bool", "protect": "bool",
                 "read": "int"},
        "hasPassword": "0..1", "results": {"*": ["int"]}, "steps": ["text"],
        "line": {"answer": "right|none|noise|endless|wrongSum|late",
                 "spoil": "-1..2147483647", "lateMs": "0..60000", "refuse": "0..255",
                 "paced": "bool", "frames": "0..2147483647", "received": "0..2147483647"}},
"versions": [{"name": "text", "version": "text"}],
"partition": {"writable": "bool", "remounts": ["int"]},
"reboots": ["int"]
})";

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

bool isRange(const std::string &kind)
{
    return kind == "int" || kind.find("..") != std::string::npos;
}

Range rangeOf(const std::string &kind)
{
    if (kind == "int")
        return {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    return {std::stoll(kind), std::stoll(kind.substr(kind.find("..") + 2))};
}

std::string describeRange(const Range &range)
{
    return "a whole number from " + std::to_string(range.low) + " to " + std::to_string(range.high);
}

std::string describe(const Leaf &leaf)
{
    std::string description = "one of " + leaf.kind;
    if (leaf.kind == "text")
        description = "a text";
    else if (leaf.kind == "bool")
        description = "true or false";
    else if (leaf.kind == "int")
        description = "a whole number";
    else if (isRange(leaf.kind))
        description = describeRange(rangeOf(leaf.kind));
    return leaf.nullable ? description + ", or null" : description;
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
        throw BadRequest(path + ": must be " + describe(leaf));
}

} // namespace sim
