// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"

#include <optional>

namespace kelvora {

/// Tells what an application does now. Any thread but the main one; one at a time.
class ApplicationProbe {
public:
    virtual ~ApplicationProbe() = default;

    /// False when the application of the window is stopped, or is asked and does not answer within
    /// `timeout` seconds: keys sent to it would take effect at a time nobody can tell. True where
    /// that cannot be found out.
    [[nodiscard]] virtual bool isResponding(FocusTarget target, double timeout) = 0;

    /// Whether the application of the window put there what is on the pasteboard; true also when
    /// nothing is there. Absent where that cannot be found out.
    [[nodiscard]] virtual std::optional<bool> ownsPasteboard(FocusTarget target) = 0;
};

} // namespace kelvora
