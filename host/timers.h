// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace kelvora {

/// A timer that runs for as long as this object lives.
class Timer {
public:
    virtual ~Timer() = default;
};

/// The main loop's timers. Main thread only.
class Timers {
public:
    virtual ~Timers() = default;

    /// Calls `work` on the main thread every `seconds`, the first time after one such interval.
    /// Ticks may come some hundredths of the interval early or late, together with those of other
    /// timers, and missed ones are not made up for. `work` must not destroy the timer.
    [[nodiscard]] virtual std::unique_ptr<Timer> repeat(double seconds,
                                                        std::function<void()> work) = 0;
};

} // namespace kelvora
