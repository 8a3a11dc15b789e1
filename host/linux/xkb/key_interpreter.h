// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_event.h"
#include "host/linux/xkb/handles.h"

#include <array>
#include <cstdint>
#include <optional>

namespace kelvora {

/// A key going down or up, as the keyboard reports it.
struct RawKey {
    xkb_keycode_t keycode = 0;
    bool isPress = false;
    std::uint8_t modifiers = 0; ///< the eight real modifiers in effect before the event
    std::uint32_t group = 0;    ///< the effective group before the event
    bool isSynthetic = false;   ///< one of our own: its text is not followed
};

/// What the modifier bits of one keymap mean, found from the keys that set them.
struct ModifierRoles {
    std::uint8_t option = 0;  ///< third and fifth level
    std::uint8_t command = 0; ///< Alt, Meta, Super, Hyper

    [[nodiscard]] static ModifierRoles of(xkb_keymap* keymap);
};

/// Turns keys into events in the vocabulary of host/: positions as key codes, modifiers by what
/// they do in this keymap, the state after a modifier change, and the text, composed where a
/// compose sequence ends. One thread.
class KeyInterpreter {
public:
    /// `composeTable` is referenced; null: dead keys type nothing.
    explicit KeyInterpreter(xkb_compose_table* composeTable);

    /// The keymap of the keys that follow; referenced.
    void setKeymap(xkb_keymap* keymap);

    /// The event, without timestamp and mark. Absent for keys that neither type nor move anything
    /// (volume, brightness, media), for a modifier that comes up without having gone down, and
    /// before a keymap is set.
    [[nodiscard]] std::optional<InputEvent> interpret(const RawKey& key);

    /// Forgets keys believed down and a compose sequence in progress.
    void reset();

private:
    [[nodiscard]] EventFlags flagsFor(std::uint8_t modifiers) const;
    [[nodiscard]] EventFlags flagsAfterChange(const RawKey& key, EventFlags bit);
    [[nodiscard]] bool isHeld(EventFlags bit, xkb_keycode_t except) const;
    void addText(InputEvent& event, const RawKey& key, xkb_keysym_t keysym);

    XkbKeymapPtr keymap_;
    XkbStatePtr state_;
    XkbComposeStatePtr compose_;
    bool isComposing_ = false;
    ModifierRoles roles_;
    /// The flag bit that each key now down stands for; 0 for keys that are up or no modifiers.
    std::array<EventFlags, 256> held_{};
    std::array<KeyCode, 256> heldKeyCode_{}; ///< what each of them was called when it went down
};

} // namespace kelvora
