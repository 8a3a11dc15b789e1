// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kelvora::bench {

using Clock = std::chrono::steady_clock;

[[nodiscard]] inline double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The value that `share` of the values do not exceed; there is at least one.
[[nodiscard]] inline double quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    const double index = share * static_cast<double>(values.size() - 1);
    return values[static_cast<std::size_t>(std::lround(index))];
}

} // namespace kelvora::bench
