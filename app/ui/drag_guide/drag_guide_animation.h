// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>

namespace kelvora {

// What the drag guide shows at which time of its loop: plain functions of `t`, the position in the
// loop in seconds, from 0 up to `animationDuration`. Positions are in the picture's coordinates.

inline constexpr double animationTick = 0.035;
inline constexpr double animationDuration = 5;

/// The time at the next tick; the loop starts again exactly at 0.
[[nodiscard]] constexpr double nextAnimationTime(double t) {
    const double next = t + animationTick;
    return next >= animationDuration ? 0 : next;
}

/// Smoothstep: eases in and out, for a progress of 0 to 1.
[[nodiscard]] constexpr double eased(double progress) {
    return progress * progress * (3 - 2 * progress);
}

struct DragIconState {
    double x = 0;
    double y = 0;
    double opacity = 0;

    friend bool operator==(const DragIconState&, const DragIconState&) = default;
};

struct CursorState {
    double x = 0;
    double y = 0;
    double scale = 1;

    friend bool operator==(const CursorState&, const CursorState&) = default;
};

/// The program's icon: waits, is dragged into the list, and fades there.
[[nodiscard]] constexpr DragIconState calculateDragIconState(double t) {
    if (t < 0.7) {
        return {320, 36, 1};
    }
    if (t < 2.0) {
        const double e = eased((t - 0.7) / 1.3);
        return {320 - 200 * e, 36 + 76 * e, 1};
    }
    if (t < 2.3) {
        return {120, 112, 1 - (t - 2.0) / 0.3};
    }
    return {120, 112, 0};
}

/// The pointer: comes to the icon, drags it, goes to the switch, presses it, and moves off.
[[nodiscard]] constexpr CursorState calculateCursorState(double t) {
    if (t < 0.7) {
        const double e = eased(t / 0.7);
        return {380 - 50 * e, 18 + 26 * e, 1};
    }
    if (t < 2.0) {
        const double e = eased((t - 0.7) / 1.3);
        return {330 - 200 * e, 44 + 76 * e, 0.92};
    }
    if (t < 3.2) {
        const double e = eased((t - 2.0) / 1.2);
        return {130 + 305 * e, 120 - 8 * e, 1};
    }
    if (t < 3.6) {
        return {435, 112, 0.88};
    }
    const double e = eased(std::min(t - 3.6, 1.0));
    return {435 + 20 * e, 112 + 40 * e, 1};
}

/// The icon is over the list.
[[nodiscard]] constexpr bool isLandingHighlight(double t) {
    return t >= 1.5 && t < 2.0;
}

/// The program stands in the list.
[[nodiscard]] constexpr bool hasLanded(double t) {
    return t >= 2.0;
}

/// The program's switch is on.
[[nodiscard]] constexpr bool isSwitchedOn(double t) {
    return t >= 3.2;
}

} // namespace kelvora
