// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora {

/// Brings this program's own windows forward because the user asked for it. Main thread only.
class WindowActivation {
public:
    virtual ~WindowActivation() = default;

    /// Puts the visible window of this identifier in front of all others and gives it the keyboard
    /// focus, also where windows that come up by themselves are kept in the background.
    virtual void bringToFront(std::uint64_t window) = 0;
};

} // namespace kelvora
