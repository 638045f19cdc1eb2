// timesyncd as the cloud service sees it.
#pragma once

#include "tests/support/TestBus.h"

#include <atomic>

// Asks its server as soon as it is named, and answers for it in one of these moods: "good",
// "silent", "unsynchronised" (a leap indicator of 3), "ignored", "other" (an answer of another
// server).
class FakeTimesync
{
public:
    explicit FakeTimesync(std::string mood) : m_mood(std::move(mood))
    {
        m_object.registerMethod("SetRuntimeNTPServers")
            .onInterface(MANAGER)
            .implementedAs([this](const std::vector<std::string> &servers) { ask(servers); });
        m_object.registerProperty("RuntimeNTPServers").onInterface(MANAGER).withGetter([this] {
            return m_servers;
        });
        m_object.registerProperty("ServerName").onInterface(MANAGER).withGetter([this] {
            return m_name;
        });
        m_object.registerProperty("NTPMessage").onInterface(MANAGER).withGetter([this] {
            return message();
        });
        m_object.finishRegistration();
        m_service.answer();
    }
    std::atomic<int> asked{0};

private:
    static constexpr const char *MANAGER = "org.freedesktop.timesync1.Manager";
    using Message = sdbus::Struct<std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                                  std::int32_t, std::uint64_t, std::uint64_t,
                                  std::vector<std::uint8_t>, std::uint64_t, std::uint64_t,
                                  std::uint64_t, std::uint64_t, bool, std::uint64_t, std::uint64_t>;

    Message message() const
    {
        const std::uint32_t leap = m_mood == "unsynchronised" ? 3 : 0;
        const std::vector<std::uint8_t> reference(4);
        return Message(leap, 4, 4, 1, -20, 0, 0, reference, 1, 2, 3, 4, m_mood == "ignored",
                       m_count, 0);
    }
    void ask(const std::vector<std::string> &servers)
    {
        ++asked;
        m_servers = servers;
        m_name.clear();
        if (m_mood == "silent")
            return;
        m_name = m_mood == "other" ? "other.example" : servers.at(0);
        ++m_count;
        m_object.emitPropertiesChangedSignal(MANAGER, {"NTPMessage"});
    }

    std::string m_mood;
    std::vector<std::string> m_servers;
    std::string m_name;
    std::uint64_t m_count = 0;
    BusService m_service{"org.freedesktop.timesync1"};
    sdbus::IObject &m_object = m_service.add("/org/freedesktop/timesync1");
};
