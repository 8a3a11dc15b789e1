// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kelvora {

/// Of several copies of the program in a session only the newest runs on. Main thread only; the
/// handlers are called there, never from inside a call of this interface, and do not destroy the
/// object.
class SingleInstance {
public:
    virtual ~SingleInstance() = default;

    /// A newer copy runs: this one stops listening first of all, and ends. At most once.
    virtual void setOnReplaced(std::function<void()> handler) = 0;
    /// The user opens the program that runs already, without a newer copy being started.
    virtual void setOnReopen(std::function<void()> handler) = 0;
    /// Makes this copy the one that runs, and has an older one end without waiting for it. Once,
    /// after the handlers are set.
    virtual void claim() = 0;
};

} // namespace kelvora
