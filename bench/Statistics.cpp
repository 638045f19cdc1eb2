#include "bench/Statistics.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace bench {

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double timed(const std::function<void()> &work)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

bool report(const std::string &name, double value, double yardstick, const std::string &unit,
            double limit)
{
    const double ratio = value / yardstick;
    const bool kept = ratio <= limit;
    std::printf("%-34s %9.2f %-4s beside %9.2f %-4s ratio %5.2f, at most %.2f  %s\n", name.c_str(),
                value, unit.c_str(), yardstick, unit.c_str(), ratio, limit,
                kept ? "kept" : "MISSED");
    return kept;
}

} // namespace bench
