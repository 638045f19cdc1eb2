#include "services/common/Options.h"

#include <cstdio>

namespace service {
namespace {

constexpr int BAD_USAGE = 2;

} // namespace

int answerOption(std::string_view option, const char *help, const char *name, const char *version)
{
    if (option == "--help")
        std::fputs(help, stdout);
    else if (option == "--version")
        std::printf("%s %s\n", name, version);
    else
        std::fprintf(stderr, "%s: unknown option; try --help\n", name);
    return option == "--help" || option == "--version" ? 0 : BAD_USAGE;
}

} // namespace service
