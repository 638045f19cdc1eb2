#include "services/cloud/Est.h"

#include "services/cloud/Identity.h"

#include <algorithm>
#include <array>
#include <curl/curl.h>
#include <memory>
#include <stdexcept>

namespace cloud {
namespace {

constexpr long TIME_MS = 7000;
constexpr std::size_t LARGEST_ANSWER = 65536;
constexpr long OK = 200;
constexpr long ACCEPTED = 202;
constexpr curl_off_t LONGEST_LATER = 86400;

struct CurlDeleter
{
    void operator()(CURL *curl) const { curl_easy_cleanup(curl); }
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};
using Curl = std::unique_ptr<CURL, CurlDeleter>;
using Headers = std::unique_ptr<curl_slist, CurlDeleter>;

std::size_t onData(char *data, std::size_t, std::size_t size, void *taken)
{
    auto &body = *static_cast<std::string *>(taken);
    if (body.size() + size > LARGEST_ANSWER)
        return 0;
    body.append(data, size);
    return size;
}

Headers makeHeaders()
{
    // No Expect: a small body is sent at once.
    curl_slist *list = nullptr;
    for (const char *line :
         {"Content-Type: application/pkcs10", "Content-Transfer-Encoding: base64",
          "Accept: application/pkcs7-mime", "Expect:"})
        list = curl_slist_append(list, line);
    return Headers(list);
}

// One request with its answer.
class Exchange
{
public:
    explicit Exchange(const EstRequest &request) : m_curl(curl_easy_init())
    {
        if (!m_curl || !m_headers)
            throw std::runtime_error("no memory");
        set(CURLOPT_HTTPHEADER, m_headers.get());
        set(CURLOPT_PROTOCOLS_STR, "https");
        set(CURLOPT_PROXY, ""); // whatever the environment says
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_TIMEOUT_MS, TIME_MS);
        set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        set(CURLOPT_ERRORBUFFER, m_fault.data());
        set(CURLOPT_WRITEFUNCTION, onData);
        set(CURLOPT_WRITEDATA, &m_body);
        set(CURLOPT_USERNAME, request.device.c_str());
        set(CURLOPT_PASSWORD, request.salt.c_str());
        set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST));
        if (!request.trust.empty())
            setTrust(request.trust);
        if (!request.former.empty())
            prove(request.former);
    }

    CURLcode post(const std::string &url, const std::string &body)
    {
        set(CURLOPT_URL, url.c_str());
        set(CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        set(CURLOPT_POSTFIELDS, body.c_str());
        return curl_easy_perform(m_curl.get());
    }

    const std::string &body() const { return m_body; }
    std::string fault(CURLcode code) const
    {
        return m_fault.front() == '\0' ? curl_easy_strerror(code) : m_fault.data();
    }
    long status() const
    {
        long status = 0;
        curl_easy_getinfo(m_curl.get(), CURLINFO_RESPONSE_CODE, &status);
        return status;
    }
    std::int64_t later() const
    {
        curl_off_t seconds = 0;
        curl_easy_getinfo(m_curl.get(), CURLINFO_RETRY_AFTER, &seconds);
        return std::clamp(seconds, curl_off_t(0), LONGEST_LATER);
    }

private:
    template <typename Value>
    void set(CURLoption option, Value value)
    {
        if (curl_easy_setopt(m_curl.get(), option, value) != CURLE_OK)
            throw std::runtime_error("libcurl lacks option " + std::to_string(option));
    }
    // The text outlives the request.
    void setBlob(CURLoption option, const std::string &text)
    {
        curl_blob blob{const_cast<char *>(text.data()), text.size(), CURL_BLOB_NOCOPY};
        set(option, &blob);
    }
    void setTrust(const std::string &pem)
    {
        setBlob(CURLOPT_CAINFO_BLOB, pem);
        set(CURLOPT_CAPATH, static_cast<const char *>(nullptr));
    }
    void prove(const std::string &identity)
    {
        setBlob(CURLOPT_SSLCERT_BLOB, identity);
        setBlob(CURLOPT_SSLKEY_BLOB, identity);
    }

    Headers m_headers = makeHeaders();
    Curl m_curl;
    std::string m_body;
    std::array<char, CURL_ERROR_SIZE> m_fault{};
};

bool isDistrust(CURLcode code)
{
    return code == CURLE_PEER_FAILED_VERIFICATION;
}

std::string refusal(long status)
{
    if (status == ACCEPTED)
        return "the certificate service has not decided yet";
    return "the certificate service answers " + std::to_string(status);
}

EstAnswer judge(const Exchange &exchange, EVP_PKEY *key)
{
    const long status = exchange.status();
    if (status != OK)
        return {EstOutcome::Failed, refusal(status), exchange.later(), ""};
    if (const auto identity = takeAnswer(key, exchange.body(), std::time(nullptr)))
        return {EstOutcome::Issued, "", 0, identity->pem};
    return {EstOutcome::Failed, "the certificate service sends no certificate that can be used", 0,
            ""};
}

EstAnswer tryEnrol(const EstRequest &request)
{
    const Key key = readKey(request.key);
    const auto former = readIdentity(request.former);
    const std::string body = makeRequest(key.get(), request.device, former ? &*former : nullptr);
    if (body.empty())
        throw std::runtime_error("no request: " + lastFault());
    const std::string url = "https://" + request.server + ":" + std::to_string(request.port) +
                            "/.well-known/est/" +
                            (request.former.empty() ? "simpleenroll" : "simplereenroll");
    Exchange exchange(request);
    const CURLcode code = exchange.post(url, body);
    if (code == CURLE_OK)
        return judge(exchange, key.get());
    return {isDistrust(code) ? EstOutcome::Distrust : EstOutcome::Failed,
            "certificate service: " + exchange.fault(code), 0, ""};
}

} // namespace

EstAnswer enrol(const EstRequest &request)
{
    try {
        return tryEnrol(request);
    } catch (const std::exception &exception) {
        return {EstOutcome::Failed, exception.what(), 0, ""};
    }
}

} // namespace cloud
