// SPDX-License-Identifier: MIT
#pragma once

#include "host/timers.h"

namespace kelvora {

/// Timers of the process's QCoreApplication, which exists before and after them. Their ticks are
/// moved by up to 5 % of the interval to fall together, so that an idle program wakes up rarely.
class QtTimers : public Timers {
public:
    [[nodiscard]] std::unique_ptr<Timer> repeat(double seconds,
                                                std::function<void()> work) override;
};

} // namespace kelvora
