// Keeps the words on the disk, from a thread of its own, so that no client ever waits for the disk.
#pragma once

#include "services/words/Journal.h"
#include "services/words/Store.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace words {

class Saver
{
public:
    explicit Saver(Store store);
    // Saves what is left, and waits for it.
    ~Saver();
    Saver(const Saver &) = delete;
    Saver &operator=(const Saver &) = delete;

    // Has the words saved a fifth of a second after the first change since the last saving, however
    // many follow: a drag of a slider is written five times a second. Failures are tried again.
    void keep(const Values &values);

private:
    void run();
    bool waitForChange();
    void save();

    Store m_store;
    Trouble m_trouble{"settings are not kept"};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Values> m_pending; // not on the disk yet
    std::chrono::milliseconds m_pause;
    bool m_bStop = false;
    std::thread m_thread;
};

} // namespace words
