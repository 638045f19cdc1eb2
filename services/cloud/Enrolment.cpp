#include "services/cloud/Enrolment.h"

#include "services/common/Journal.h"

#include <algorithm>
#include <utility>

namespace cloud {
namespace {

using namespace std::chrono_literals;

constexpr auto BETWEEN_DOUBTS = 10min;
constexpr std::chrono::seconds RAREST_LOOK = 1h;
constexpr std::chrono::seconds SOONEST_LOOK = 1min;
constexpr std::chrono::seconds FIRST_RENEWAL_PAUSE = 2min;
constexpr int LAST_DOUBLING = 7; // 256 min

GBytes *toGBytes(const std::string &bytes)
{
    return g_bytes_new(bytes.data(), bytes.size());
}

// What the helper has written.
EstAnswer answerOf(GSubprocess *process, GAsyncResult *result)
{
    GBytes *output = nullptr;
    service::Error error;
    if (g_subprocess_communicate_finish(process, result, &output, nullptr, &error) == FALSE)
        return {EstOutcome::Failed, error.text(), 0, ""};
    gsize size = 0;
    const void *data = g_bytes_get_data(output, &size);
    const auto answer = readAnswer(std::string(static_cast<const char *>(data), size));
    g_bytes_unref(output);
    return answer.value_or(EstAnswer{EstOutcome::Failed, "cloudEnrol has died", 0, ""});
}

} // namespace

std::string Enrolment::issuer() const
{
    return m_configuration.certificateServer + ":" +
           std::to_string(m_configuration.certificatePort);
}

void Enrolment::use(const Configuration &configuration)
{
    end();
    m_configuration = configuration;
    m_identity = m_store.load(issuer(), configuration.device);
    m_key.clear();
    m_quietUntil.reset();
    m_renewals = 0;
    m_bDoubted = false;
}

bool Enrolment::isUsable() const
{
    return m_identity && !m_identity->isOver(std::time(nullptr));
}

bool Enrolment::isQuiet() const
{
    return m_quietUntil && Clock::now() < *m_quietUntil;
}

bool Enrolment::isContent()
{
    if (!isUsable())
        return false;
    const auto now = Clock::now();
    if (!m_bDoubted || (m_replaced && now - *m_replaced < BETWEEN_DOUBTS))
        return true;
    m_replaced = now;
    return false;
}

void Enrolment::begin(Done done)
{
    if (isContent() || (isQuiet() && isUsable()))
        return done("", false);
    if (isQuiet())
        return done("the certificate service has asked to be left alone for a while", false);
    ask(false, std::move(done));
}

void Enrolment::renew(double chance)
{
    const std::time_t now = std::time(nullptr);
    if (m_calls || !m_identity || now < m_identity->renewal() || isQuiet() ||
        (m_renewals > 0 && Clock::now() < m_renewalDue))
        return;
    const auto longest = FIRST_RENEWAL_PAUSE * (1 << std::min(m_renewals++, LAST_DOUBLING));
    m_renewalDue =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(longest * (0.5 + chance / 2));
    // One that is over proves nothing any more.
    ask(!m_identity->isOver(now), [](const std::string &trouble, bool) {
        if (!trouble.empty())
            service::warn("the certificate is not renewed: " + trouble);
    });
}

void Enrolment::end()
{
    m_calls.reset();
    if (m_process)
        g_subprocess_force_exit(m_process.get());
    m_process.reset();
}

std::chrono::seconds Enrolment::untilRenewal() const
{
    if (!m_identity)
        return RAREST_LOOK;
    const std::chrono::seconds left(m_identity->renewal() - std::time(nullptr));
    return std::clamp(left, SOONEST_LOOK, RAREST_LOOK);
}

EstRequest Enrolment::request(bool isRenewal)
{
    if (m_key.empty())
        m_key = makeKey();
    return {m_configuration.certificateServer,
            static_cast<std::uint16_t>(m_configuration.certificatePort),
            m_configuration.device,
            m_configuration.salt,
            m_configuration.trust,
            m_key,
            isRenewal ? m_identity->pem : ""};
}

void Enrolment::ask(bool isRenewal, Done done)
{
    end();
    const auto flags = static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE |
                                                     G_SUBPROCESS_FLAGS_STDOUT_PIPE);
    service::Error error;
    m_process.reset(g_subprocess_new(flags, &error, m_helper.c_str(), nullptr));
    if (!m_process)
        return done(error.text(), false);
    m_calls = std::make_unique<service::Calls>();
    GBytes *input = toGBytes(toBytes(request(isRenewal)));
    g_subprocess_communicate_async(
        m_process.get(), input, m_calls->cancellable(), service::Calls::answer,
        m_calls->expect([this, done = std::move(done)](GObject *, GAsyncResult *result) {
            take(answerOf(m_process.get(), result), done);
        }));
    g_bytes_unref(input);
}

void Enrolment::take(const EstAnswer &answer, const Done &done)
{
    m_calls.reset();
    m_process.reset();
    if (answer.later > 0)
        m_quietUntil = Clock::now() + std::chrono::seconds(answer.later);
    if (answer.outcome == EstOutcome::Issued)
        return done(keep(answer.identity) ? "" : "the certificate cannot be read", false);
    // A doubt that could not be settled.
    if (m_bDoubted && isUsable())
        return done("", false);
    done(answer.why, answer.outcome == EstOutcome::Distrust);
}

bool Enrolment::keep(const std::string &pem)
{
    const auto identity = readIdentity(pem);
    if (!identity)
        return false;
    // A disk that takes nothing must not have another one issued at each try: it serves until the
    // next start.
    m_store.keep(issuer(), m_configuration.device, *identity);
    m_identity = identity;
    m_key.clear();
    m_renewals = 0;
    m_bDoubted = false;
    service::say("a certificate has been issued by " + issuer());
    return true;
}

} // namespace cloud
