// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kelvora {

/// The place for icons that a panel announces on the display itself. Main thread only.
class TrayArea {
public:
    virtual ~TrayArea() = default;

    [[nodiscard]] virtual bool isThere() const = 0;
    /// Called when it has come; an empty function ends that.
    virtual void setOnAppeared(std::function<void()> handler) = 0;
};

} // namespace kelvora
