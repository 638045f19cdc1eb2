// The limit of an idle panel: one thread that wakes every 50 ms and does nothing.

#include <chrono>
#include <thread>

int main()
{
    for (;;)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
}
