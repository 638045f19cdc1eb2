// Measures whole programs: start to first frame, memory after start, cost of idling. The panel
// and its yardstick run in turn, so that other load on the machine slows both.
//
//   bench-processes [PANEL RUNS SETTLE_MS]
//
// With arguments only start and memory are measured, of that program, in this folder or by its
// path. BENCH_PRELOAD names a library to preload into programs that do not tell by themselves.

#include "bench/Statistics.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int RUNS = 21;
constexpr auto SETTLE = std::chrono::milliseconds(600);
constexpr auto AFTER_START = std::chrono::seconds(3);
constexpr auto IDLE_SLICE = std::chrono::seconds(2); // one check of links and cloud in each

constexpr double START_LIMIT = 1.8;
constexpr double MEMORY_LIMIT = 1.5;
constexpr double WAKEUP_COST_LIMIT = 1.5;
constexpr double WAKEUPS_PER_SECOND = 25;

std::string folder; // of the programs

// A program of this folder, running until the object goes.
class Child
{
public:
    // Returns when the program has painted its first frame.
    explicit Child(const std::string &program) : m_program(program)
    {
        int ends[2];
        if (pipe(ends) != 0)
            std::abort();
        m_startMs = bench::timed([&] {
            m_pid = fork();
            if (m_pid == 0)
                become(ends[1]);
            close(ends[1]);
            char byte = 0;
            if (read(ends[0], &byte, 1) != 1) {
                std::fprintf(stderr, "%s ended before its first frame\n", program.c_str());
                std::_Exit(1);
            }
        });
        close(ends[0]);
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;
    ~Child()
    {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }

    double startMs() const { return m_startMs; }

    // Proportional set size in MiB, proc(5) smaps_rollup.
    double memoryMiB() const
    {
        std::ifstream file("/proc/" + std::to_string(m_pid) + "/smaps_rollup");
        for (std::string word; file >> word;) {
            double kilobytes = 0;
            if (word == "Pss:" && file >> kilobytes)
                return kilobytes / 1024;
        }
        return 0;
    }

    struct Usage
    {
        double cpuMs = 0;
        double wakeups = 0;
    };

    // Of all threads so far, proc(5) schedstat and status.
    Usage usage() const
    {
        Usage sum;
        const std::string tasks = "/proc/" + std::to_string(m_pid) + "/task";
        for (const auto &task : std::filesystem::directory_iterator(tasks)) {
            double nanoseconds = 0;
            std::ifstream(task.path() / "schedstat") >> nanoseconds;
            sum.cpuMs += nanoseconds / 1e6;
            std::ifstream status(task.path() / "status");
            for (std::string line; std::getline(status, line);) {
                std::istringstream words(line);
                std::string name;
                double count = 0;
                if (words >> name >> count && name == "voluntary_ctxt_switches:")
                    sum.wakeups += count;
            }
        }
        return sum;
    }

private:
    [[noreturn]] void become(int readyFd) const
    {
        const std::string ready = std::to_string(readyFd);
        setenv("BENCH_READY_FD", ready.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
        const int quiet = open("/dev/null", O_WRONLY);
        if (quiet >= 0) {
            dup2(quiet, STDOUT_FILENO);
            dup2(quiet, STDERR_FILENO);
        }
        if (const char *library = getenv("BENCH_PRELOAD")) // NOLINT(concurrency-mt-unsafe)
            setenv("LD_PRELOAD", library, 1);              // NOLINT(concurrency-mt-unsafe)
        const std::string path = std::filesystem::path(folder) / m_program;
        execl(path.c_str(), path.c_str(), nullptr);
        std::_Exit(1);
    }

    std::string m_program;
    pid_t m_pid = -1;
    double m_startMs = 0;
};

struct Samples
{
    std::vector<double> startMs;
    std::vector<double> memoryMiB;

    void take(const char *program, std::chrono::milliseconds settle)
    {
        const Child child(program);
        startMs.push_back(child.startMs());
        std::this_thread::sleep_for(settle);
        memoryMiB.push_back(child.memoryMiB());
    }
};

bool measureStart(const char *program, int runs, std::chrono::milliseconds settle)
{
    Samples panel;
    Samples limit;
    for (int run = 0; run < runs; ++run) {
        panel.take(program, settle);
        limit.take("bench-empty-dialog", settle);
    }
    bool kept = bench::report("start to first frame", bench::median(panel.startMs),
                              bench::median(limit.startMs), "ms", START_LIMIT);
    kept &= bench::report("memory after start", bench::median(panel.memoryMiB),
                          bench::median(limit.memoryMiB), "MiB", MEMORY_LIMIT);
    return kept;
}

// What a program uses in each of many slices of time.
class IdleMeter
{
public:
    explicit IdleMeter(const Child &child) : m_child(child), m_last(child.usage()) {}

    void endSlice()
    {
        const Child::Usage now = m_child.usage();
        const double cpuMs = now.cpuMs - m_last.cpuMs;
        const double wakeups = now.wakeups - m_last.wakeups;
        cpuMsASlice.push_back(cpuMs);
        wakeupsASlice.push_back(wakeups);
        usAWakeup.push_back(wakeups > 0 ? cpuMs * 1000 / wakeups : 0);
        m_last = now;
    }

    std::vector<double> cpuMsASlice;
    std::vector<double> wakeupsASlice;
    std::vector<double> usAWakeup;

private:
    const Child &m_child;
    Child::Usage m_last;
};

bool measureIdle()
{
    const Child panel("bench-panel");
    const Child limit("bench-clock-dialog");
    std::this_thread::sleep_for(AFTER_START);
    IdleMeter panelMeter(panel);
    IdleMeter limitMeter(limit);
    for (int slice = 0; slice < RUNS; ++slice) {
        std::this_thread::sleep_for(IDLE_SLICE);
        panelMeter.endSlice();
        limitMeter.endSlice();
    }
    const double seconds = std::chrono::duration<double>(IDLE_SLICE).count();
    std::printf("idle, processor time a second: %.2f ms beside %.2f ms of a dialog with a clock\n",
                bench::median(panelMeter.cpuMsASlice) / seconds,
                bench::median(limitMeter.cpuMsASlice) / seconds);
    bool kept = bench::report("idle, a wake-up", bench::median(panelMeter.usAWakeup),
                              bench::median(limitMeter.usAWakeup), "us", WAKEUP_COST_LIMIT);
    kept &=
        bench::report("idle, wake-ups a second", bench::median(panelMeter.wakeupsASlice) / seconds,
                      1, "", WAKEUPS_PER_SECOND);
    return kept;
}

} // namespace

int main(int argc, char **argv)
{
    folder = std::filesystem::path(argv[0]).parent_path().string();
    if (argc == 4)
        return measureStart(argv[1], std::stoi(argv[2]),
                            std::chrono::milliseconds(std::stoi(argv[3])))
                   ? 0
                   : 1;
    const bool start = measureStart("bench-panel", RUNS, SETTLE);
    const bool idle = measureIdle();
    return start && idle ? 0 : 1;
}
