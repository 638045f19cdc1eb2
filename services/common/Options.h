#pragma once

#include <string_view>

namespace service {

// Answers --help with the text and --version with name and version; the program's exit status: 0,
// or 2 for any other option.
int answerOption(std::string_view option, const char *help, const char *name, const char *version);

} // namespace service
