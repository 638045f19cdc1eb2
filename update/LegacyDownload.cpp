#include "update/LegacyDownload.h"
int downloadLegacyProgram(const std::string &)
{
    return -20;
}
