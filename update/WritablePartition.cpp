#include "update/WritablePartition.h"

#include "platform/board.h"

#include <cstdio>
#include <mutex>

namespace {

constexpr int READ_ONLY = 0;
constexpr int WRITABLE = 1;

std::mutex usersMutex;
int users = 0;

void remount(int mode)
{
    if (remountPartion(mode, "") < 0)
        std::printf("remountPartion [%d] error \n", mode);
}

} // namespace

WritablePartition::WritablePartition()
{
    {
        const std::lock_guard<std::mutex> lock(usersMutex);
        ++users;
    }
    remount(WRITABLE); // by each, as it may be read-only for another reason
}

// With the mutex held, so that a new user's call comes after this one.
WritablePartition::~WritablePartition()
{
    const std::lock_guard<std::mutex> lock(usersMutex);
    if (--users == 0)
        remount(READ_ONLY);
}
