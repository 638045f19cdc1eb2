#include "platform/posix/ProcessTable.h"

#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <vector>

namespace os {
namespace {

// The first bytes of a file of the process, enough for any path; empty if the process is gone.
std::string readProc(int pid, const char *file)
{
    const std::string path = "/proc/" + std::to_string(pid) + "/" + file;
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, PATH_MAX> head{};
    const ssize_t size = fd.isOpen() ? ::read(fd.get(), head.data(), head.size()) : 0;
    return {head.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

// proc(5): the name and a line end; the kernel keeps 15 bytes of a name.
std::string commOf(int pid)
{
    std::string comm = readProc(pid, "comm");
    if (!comm.empty())
        comm.pop_back();
    return comm;
}

// proc(5): the arguments, each with a 0 byte behind it; nothing for zombies and kernel threads.
std::string programOf(int pid)
{
    const std::string arguments = readProc(pid, "cmdline");
    const std::string program = arguments.substr(0, arguments.find('\0'));
    return program.substr(program.rfind('/') + 1);
}

// proc(5): "PID (comm) STATE ..."; comm may hold brackets itself.
bool isAlive(int pid)
{
    const std::string stat = readProc(pid, "stat");
    const std::size_t state = stat.rfind(") ");
    return state != std::string::npos && stat[state + 2] != 'Z' && stat[state + 2] != 'X';
}

std::vector<int> processes()
{
    std::vector<int> pids;
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc", error);
    for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().native();
        int pid = 0;
        const char *end = name.data() + name.size();
        if (std::from_chars(name.data(), end, pid).ptr == end && pid > 0)
            pids.push_back(pid);
    }
    std::sort(pids.begin(), pids.end());
    return pids;
}

} // namespace

int scanProcessTable(const std::string &name)
{
    if (name.empty())
        return -1;
    for (const int pid : processes()) {
        if ((commOf(pid) == name || programOf(pid) == name) && isAlive(pid))
            return pid;
    }
    return -1;
}

} // namespace os
