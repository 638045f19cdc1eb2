// A network service without a network, in a process of its own: PROGRAM --serve MOOD.
#pragma once

#include "platform/linux/NetworkClient.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <Network1Adaptor.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

// The device's name says what becomes of a call. In the mood "nonsense" values are out of range.
class FakeNetwork final : public sdbus::AdaptorInterfaces<org::sysset::Network1_adaptor>
{
public:
    FakeNetwork(sdbus::IConnection &bus, bool isNonsense)
        : AdaptorInterfaces(bus, "/org/sysset/Network1"), m_isNonsense(isNonsense)
    {
        registerAdaptor();
    }
    FakeNetwork(const FakeNetwork &) = delete;
    FakeNetwork &operator=(const FakeNetwork &) = delete;
    ~FakeNetwork() { unregisterAdaptor(); }

private:
    using Text = const std::string &;
    using Bytes = board::NetworkBytes;

    board::NetworkRecord record(Text name) const
    {
        const bool isUp = name != "down";
        return {name,
                "ETH",
                "02:00:00:00:00:01",
                "192.168.1.5",
                "255.255.255.0",
                "192.168.1.1",
                "9.9.9.9",
                "8.8.8.8",
                true,
                isUp,
                isUp,
                isUp,
                isUp,
                isUp};
    }
    static void behave(Text name)
    {
        if (name == "slow")
            std::this_thread::sleep_for(std::chrono::milliseconds(800));
        else if (name == "dies")
            _exit(0);
        else if (name == "gone")
            throw sdbus::Error("org.sysset.Network1.Error.NoDevice", "");
        else if (name == "refused")
            throw sdbus::Error("org.sysset.Network1.Error.Failed", "");
        else if (name == "odd")
            throw sdbus::Error("org.freedesktop.DBus.Error.LimitsExceeded", "");
    }

    board::NetworkRecords GetDevices(const bool &) override
    {
        return {record("eth1"), record("eth0")};
    }
    board::NetworkRecord GetDevice(Text name, const bool &) override
    {
        behave(name);
        return record(name);
    }
    // Emits as many changes as the name says, the last of a device that has this name.
    void SwitchDevice(Text name, const bool &, const bool &) override
    {
        behave(name);
        for (long i = std::strtol(name.c_str(), nullptr, 10); i > 0; --i)
            emitDevicesChanged({record(i == 1 ? name : "passing")});
        emitModemChanged(GetModem(false));
    }
    void UseDhcp(Text name, const bool &) override { behave(name); }
    void KeepAddress(Text name, const bool &) override { behave(name); }
    void SetAddress(Text name, Text, Text, Text, const bool &) override { behave(name); }
    void SetDns(Text name, Text, Text, const bool &) override { behave(name); }
    board::NetworkStations GetAccessPoints(const bool &) override
    {
        const int level = m_isNonsense ? 101 : 100;
        return {{1, level, {'a', 0, 0xFF}, "", 2},
                {2, 3, Bytes(m_isNonsense ? 33 : 32, 'x'), "", m_isNonsense ? -1 : 0}};
    }
    board::NetworkWifi GetWifi(const bool &) override
    {
        return {m_isNonsense ? 8 : 7, m_name, m_password, 2, 1, m_isNonsense ? -1 : 80};
    }
    void SetNetwork(const Bytes &name, const Bytes &password, const bool &) override
    {
        m_name = name;
        m_password = password;
    }
    void JoinNetwork() override {}
    board::NetworkModem GetModem(const bool &) override
    {
        return {m_isNonsense ? 50 : 31, m_isNonsense ? std::string(1000000, '9') : "iccid", "imei",
                "network", true};
    }
    board::NetworkApn GetApn(const bool &) override { return m_apn; }
    void SetApn(const board::NetworkApn &apn, const bool &) override { m_apn = apn; }
    std::string GetPreferred(const bool &) override { return m_isNonsense ? "5G" : m_preferred; }
    void SetPreferred(Text kind, const bool &) override { m_preferred = kind; }
    board::NetworkTimes Ping(Text name, Text target, const std::int32_t &count,
                             const std::uint32_t &timeout, const bool &) override
    {
        behave(name);
        const int time = m_isNonsense ? -5 : static_cast<int>(timeout);
        return {time, count, target == "8.8.8.8" ? 8 : 1, 25};
    }

    const bool m_isNonsense;
    Bytes m_name;
    Bytes m_password;
    board::NetworkApn m_apn;
    std::string m_preferred = "ETH";
};

// Answers every question by a number, in the mood "empty" by nothing.
inline std::unique_ptr<sdbus::IObject> badNetwork(sdbus::IConnection &bus, bool isEmpty)
{
    auto object = sdbus::createObject(bus, "/org/sysset/Network1");
    const std::map<std::string, std::string> signatures{
        {"GetDevice", "sb"}, {"GetDevices", "b"}, {"GetAccessPoints", "b"}, {"GetWifi", "b"},
        {"GetModem", "b"},   {"GetApn", "b"},     {"GetPreferred", "b"},    {"Ping", "ssiub"},
    };
    for (const auto &[name, signature] : signatures) {
        object->registerMethod(board::NETWORK_SERVICE, name, signature, isEmpty ? "" : "i",
                               [isEmpty](const sdbus::MethodCall &call) {
                                   sdbus::MethodReply reply = call.createReply();
                                   if (!isEmpty)
                                       reply << std::int32_t(1);
                                   reply.send();
                               });
    }
    object->finishRegistration();
    return object;
}

// Returns when the bus is gone. Says when the service can be called.
inline int serveFakeNetwork(const std::string &mood)
{
    const auto bus = sdbus::createSystemBusConnection();
    std::unique_ptr<FakeNetwork> sound;
    std::unique_ptr<sdbus::IObject> bad;
    if (mood == "empty" || mood == "wrong")
        bad = badNetwork(*bus, mood == "empty");
    else
        sound = std::make_unique<FakeNetwork>(*bus, mood == "nonsense");
    bus->requestName(board::NETWORK_SERVICE);
    std::puts("ready");
    std::fflush(stdout);
    try {
        bus->enterEventLoop();
    } catch (const sdbus::Error &) {
        return 0;
    }
    return 1;
}
