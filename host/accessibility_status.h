// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kelvora {

/// News of the desktop's accessibility as a whole. Main thread only; the handler is called there,
/// never from inside a call of this interface, and does not destroy the object.
class AccessibilityStatus {
public:
    virtual ~AccessibilityStatus() = default;

    /// It was switched on or off, or a screen reader came or went.
    virtual void setOnChanged(std::function<void()> handler) = 0;
};

} // namespace kelvora
