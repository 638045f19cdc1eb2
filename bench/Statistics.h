// Medians and ratios, printed beside their limits.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

double median(std::vector<double> values);

// Milliseconds that `work` takes.
double timed(const std::function<void()> &work);

// Prints "name: value unit, limit's value unit: ratio (at most limit)" and returns whether the
// ratio keeps the limit.
bool report(const std::string &name, double value, double yardstick, const std::string &unit,
            double limit);

} // namespace bench
