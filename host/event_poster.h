// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"
#include "host/input_event.h"
#include "host/keyboard_hold.h"

#include <memory>
#include <optional>

namespace kelvora {

enum class KeyDirection { down, up };

/// Posts synthetic keyboard events to whatever has the focus. Any thread but the main one; one
/// thread at a time.
class EventPoster {
public:
    virtual ~EventPoster() = default;

    /// A key event without flags, mark or text. Absent when the desktop cannot make it.
    [[nodiscard]] virtual std::optional<InputEvent> createKeyEvent(KeyCode keyCode,
                                                                   KeyDirection direction) = 0;

    /// Posts an event with exactly its flags, whatever modifiers are held. Command with the keys A,
    /// C and V is the desktop's shortcut by that letter, wherever the layout has it. An event with
    /// text types the text when it goes down, in whatever layout is active, and nothing when it
    /// comes up. Locks, layout and keymap are afterwards as they were.
    virtual void post(const InputEvent& event) = 0;

    /// The modifiers that are held now, on all keyboards together.
    [[nodiscard]] virtual EventFlags modifierState() = 0;

    /// Blocks the calling thread for at least `seconds`; not at all for zero or less.
    virtual void sleep(double seconds) = 0;

    /// Holds the user's keyboards back. Null when the desktop cannot; posting then works all the
    /// same, and keys pressed meanwhile go between the posted ones.
    [[nodiscard]] virtual std::unique_ptr<KeyboardHold> holdKeyboard(FocusTarget target) = 0;
};

} // namespace kelvora
