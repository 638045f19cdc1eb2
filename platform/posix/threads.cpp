#include "platform/posix/threads.h"

#include <pthread.h>
#include <system_error>
#include <thread>

namespace os {

bool startThread(const char *name, std::function<void()> body)
{
    try {
        std::thread([name, body = std::move(body)] {
            ::pthread_setname_np(::pthread_self(), name);
            body();
        }).detach();
        return true;
    } catch (const std::system_error &) {
        return false;
    }
}

} // namespace os
