#pragma once

#include <memory>
#include <mutex>
#include <thread>

namespace sim {

// The PLC at the panel's serial ports: behind each of the four nodes in "/dev/THAL/tty" under the
// panel's root is a pseudo-terminal, at whose other end its one thread, "plc", takes and answers
// frames, as plc.line in the state says. All functions: any thread.
class SerialPlc
{
public:
    SerialPlc();
    ~SerialPlc();
    SerialPlc(const SerialPlc &) = delete;
    SerialPlc &operator=(const SerialPlc &) = delete;

    // Plugs the PLC in, if it is not. A node that cannot be made is left out and named on standard
    // error. Does not block; the panel may be locked.
    void start();

    // Unplugs it: the lines break, their nodes go. Waits for the thread, which never waits for the
    // program. The panel is not locked.
    void forget();

    // The same; start() then does nothing any more.
    void stop();

private:
    struct Lines;

    static void run(Lines &lines);

    std::mutex m_mutex;
    std::unique_ptr<Lines> m_lines;
    std::thread m_thread;
    bool m_isStopped = false;
};

} // namespace sim
