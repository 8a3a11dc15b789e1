// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_event.h"
#include "host/key_codes.h"

#include <string_view>

namespace kelvora {

/// How a conversion presses keys and passes time. Every operation blocks its thread: never on the
/// main thread, and on one thread at a time. Times are seconds. What the desktop cannot do is
/// skipped, without a report.
class EventPosting {
public:
    virtual ~EventPosting() = default;

    /// Presses and releases one key with the given modifier flags; pauses `delay` after each.
    virtual void sendKey(KeyCode keyCode, EventFlags flags, double delay) = 0;

    /// Types any text, carried by the events as text and not as key codes.
    virtual void typeText(std::u16string_view text) = 0;

    /// Returns when no Shift, Control, Option or Command is held, or after `timeout`. At once, and
    /// without a look, when `timeout` is zero or less.
    virtual void waitForModifiersReleased(double timeout) = 0;

    virtual void sleep(double seconds) = 0;
};

} // namespace kelvora
