// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kelvora {

/// The fate of the session's displays. Main thread only; the handler is called there, never from
/// inside a call of this interface, and does not destroy the object.
class DisplayEvents {
public:
    virtual ~DisplayEvents() = default;

    /// The displays show a picture again after they were blank.
    virtual void setOnDisplayWake(std::function<void()> handler) = 0;
};

} // namespace kelvora
