// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kelvora {

/// Sleep and the fate of the login session. Main thread only; the handlers are called there, never
/// from inside a call of this interface, and do not destroy the object. Where the desktop tells
/// nothing they are never called.
class SessionEvents {
public:
    virtual ~SessionEvents() = default;

    /// False where that is not known.
    [[nodiscard]] virtual bool isLocked() const = 0;

    /// The machine woke from sleep.
    virtual void setOnWake(std::function<void()> handler) = 0;
    /// The session came back to the foreground, or was unlocked. May come more than once for one
    /// such change.
    virtual void setOnBecameActive(std::function<void()> handler) = 0;
    /// Another session came to the foreground, or this one was locked. May come more than once.
    virtual void setOnResignedActive(std::function<void()> handler) = 0;
};

} // namespace kelvora
