// The threads of this process as the kernel sees them (proc(5)).
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

// How many threads of that name there are; adds to `switches` how often they went to sleep so far.
inline int threadsNamed(const std::string &name, int *switches = nullptr)
{
    int count = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(task.path() / "status"); // the name comes first
        int times = 0;
        for (std::string word; status >> word;) {
            if (word == "Name:" && status >> word && word != name)
                break;
            if (word == "voluntary_ctxt_switches:" && ++count && status >> times && switches)
                *switches += times;
        }
    }
    return count;
}
