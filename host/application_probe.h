// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"

namespace kelvora {

/// Tells whether an application takes keys now. Any thread but the main one; one at a time.
class ApplicationProbe {
public:
    virtual ~ApplicationProbe() = default;

    /// False when the application of the window is stopped, or is asked and does not answer within
    /// `timeout` seconds: keys sent to it would take effect at a time nobody can tell. True where
    /// that cannot be found out.
    [[nodiscard]] virtual bool isResponding(FocusTarget target, double timeout) = 0;
};

} // namespace kelvora
