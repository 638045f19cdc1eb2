// cloudEnrol: asks a certificate service for a certificate, for cloudService. One EstRequest on
// standard input, one EstAnswer on standard output.
#include "services/cloud/Est.h"

#include <cstdio>
#include <curl/curl.h>
#include <iostream>
#include <iterator>

namespace {

constexpr int BAD_USAGE = 2;

} // namespace

int main()
{
    const std::string input{std::istreambuf_iterator<char>(std::cin), {}};
    const auto request = cloud::readRequest(input);
    if (!request)
        return BAD_USAGE;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    const std::string output = cloud::toBytes(cloud::enrol(*request));
    const bool isWritten = std::fwrite(output.data(), 1, output.size(), stdout) == output.size();
    return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}
