// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/trigger/hotkey_input.h"

namespace kelvora {

/// Answers whether a double tap of Shift has just been completed. Times are seconds on one
/// monotonic clock; only their differences and order count. A plain value without a lock.
class DoubleShiftDetector {
public:
    /// Longest time in seconds the first Shift may be held; the second press has no limit.
    static constexpr double holdLimit = 0.45;

    explicit DoubleShiftDetector(double maximumPause) : maximumInterval(maximumPause) {}

    /// True exactly once per double tap, on the release of the second Shift.
    [[nodiscard]] bool process(HotkeyInput input, double time);

    /// Forgets a tap in progress.
    void reset() { enter(State::idle, 0); }

    /// Longest pause in seconds from the first Shift's release to the second Shift's press.
    double maximumInterval;

private:
    enum class State : std::uint8_t { idle, firstDown, waitingForSecond, secondDown };

    void enter(State state, double time);
    void shiftDown(double time);
    bool shiftUp(double time);

    State state_ = State::idle;
    double since_ = 0; // when firstDown or waitingForSecond was entered
};

} // namespace kelvora
