// The certificate: where it comes from, how it is kept, when it is renewed.
#pragma once

#include "services/cloud/Configuration.h"
#include "services/cloud/EstMessage.h"
#include "services/cloud/Store.h"
#include "services/common/GLib.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace cloud {

class Enrolment
{
public:
    // `trouble` is "" when there is a certificate; `distrust` as EstOutcome has it.
    using Done = std::function<void(const std::string &trouble, bool distrust)>;

    // `helper` is the program file of cloudEnrol, which asks: what it needs for that is a third of
    // all that this process would have, for a few seconds a year.
    Enrolment(Store store, std::string helper)
        : m_store(std::move(store)), m_helper(std::move(helper))
    {
    }
    ~Enrolment() { end(); }
    Enrolment(const Enrolment &) = delete;
    Enrolment &operator=(const Enrolment &) = delete;

    // Whose certificate is wanted. Before anything else; ends what is under way.
    void use(const Configuration &configuration);
    // Passes at once with the certificate that is there, else asks for one.
    void begin(Done done);
    // Asks for another one if two thirds of this one's life are over. What comes of it holds for
    // the next begin(). A failure is told to the journal, and a call that comes too soon after it
    // does nothing: for 1 to 2 minutes, then longer, up to 2 to 4 hours. `chance`, 0 to 1, spreads
    // the panels of a plant.
    void renew(double chance);
    // Gives up what is under way.
    void end();

    // Once begin() has passed.
    const Identity &identity() const { return *m_identity; }
    // The server does not take this certificate: the next begin() asks for another one, at most
    // once in ten minutes, and is content with this one if none is given.
    void doubt() { m_bDoubted = true; }
    // How long until renew() has something to do, at least a minute and at most an hour.
    std::chrono::seconds untilRenewal() const;

private:
    using Clock = std::chrono::steady_clock;

    std::string issuer() const;
    bool isContent();
    bool isUsable() const;
    bool isQuiet() const;
    void ask(bool isRenewal, Done done);
    EstRequest request(bool isRenewal);
    void take(const EstAnswer &answer, const Done &done);
    bool keep(const std::string &pem);

    Store m_store;
    std::string m_helper;
    Configuration m_configuration;
    std::optional<Identity> m_identity;
    std::string m_key; // of a request that has not been granted yet
    std::unique_ptr<service::Calls> m_calls;
    service::Object<GSubprocess> m_process;
    std::optional<Clock::time_point> m_quietUntil; // as the service has asked
    Clock::time_point m_renewalDue;                // the next try, after one
    int m_renewals = 0;                            // tries since a certificate has been issued
    std::optional<Clock::time_point> m_replaced;   // the last time for doubts
    bool m_bDoubted = false;
};

} // namespace cloud
