// All of the cloud service.
#pragma once

#include "services/cloud/Broker.h"
#include "services/cloud/ClockSync.h"
#include "services/cloud/Door.h"
#include "services/cloud/Enrolment.h"
#include "services/cloud/Requests.h"
#include "services/cloud/Session.h"
#include "services/common/GLib.h"

#include <optional>
#include <random>

namespace cloud {

class Service final : private Session::World, private Broker::Listener, private Door::Host
{
public:
    // `helper` as Enrolment has it. Throws std::runtime_error if the bus does not let it serve.
    Service(GDBusConnection *bus, const std::string &helper);

private:
    // Session::World
    void begin(Stage stage) override;
    void end() override;
    void wakeAfter(std::chrono::milliseconds time) override;
    Session::Clock::time_point now() override { return Session::Clock::now(); }
    double chance() override;
    void tell(int status, const std::string &reason) override;
    // Broker::Listener
    void accepted() override;
    void subscribed() override;
    void arrived(const std::string &message) override;
    void lost(const std::string &why, bool isDistrust, bool isRefused) override;
    // Door::Host
    void start(const Configuration &configuration) override;
    int status() const override { return m_session.status(); }
    const std::string &reason() const override { return m_session.reason(); }
    bool answer(std::uint64_t number, const std::string &message) override;

    void settle(Stage stage, const std::string &trouble);
    void networkChanged();
    void keepCertificate();

    std::mt19937 m_random{std::random_device()()};
    Session m_session{*this};
    ClockSync m_clock;
    Enrolment m_enrolment;
    Broker m_broker{*this};
    Requests m_requests;
    std::optional<Configuration> m_configuration;
    bool m_bClockDoubted = false; // a certificate was not accepted, and the time may be why
    service::Timer m_alarm;
    service::Timer m_settled; // the network
    service::Timer m_renewal;
    service::Handlers m_network;
    Door m_door; // the last, as it calls the others
};

} // namespace cloud
