#pragma once
#include <string>
int downloadLegacyProgram(const std::string &path);
