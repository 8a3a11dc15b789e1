// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <thread>

namespace kelvora::real {

inline constexpr std::chrono::milliseconds defaultDeadline{10'000};

/// Polls `condition` until it holds or `deadline` has passed; answers whether it came to hold.
template <typename Condition>
[[nodiscard]] bool waitUntil(const Condition& condition,
                             std::chrono::milliseconds deadline = defaultDeadline,
                             std::chrono::microseconds interval = std::chrono::milliseconds(3)) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(interval);
    }
    return true;
}

/// Watches `condition` for the whole of `duration`; false as soon as it does not hold. For what
/// must stay as it is after everything seems done.
template <typename Condition>
[[nodiscard]] bool staysTrue(const Condition& condition, std::chrono::milliseconds duration) {
    return !waitUntil([&] { return !condition(); }, duration);
}

} // namespace kelvora::real
