// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/xkb/handles.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace kelvora {

/// One way to type a character: this key, in this group, with exactly these real modifiers.
struct KeyStroke {
    std::uint8_t keycode = 0;
    std::uint8_t group = 0;
    std::uint8_t modifiers = 0;

    friend bool operator==(const KeyStroke&, const KeyStroke&) = default;
};

/// A key that sets real modifiers while it is down.
struct ModifierKeycode {
    std::uint8_t keycode = 0;
    std::uint8_t modifiers = 0;
};

/// What each key of one keymap can be used for when text is typed with it. A value; any thread.
class CharacterKeys {
public:
    /// Reads every group and level of the keymap, which is not kept.
    explicit CharacterKeys(xkb_keymap* keymap);

    /// The stroke with the fewest modifiers, in `group` if that has the character, else in the
    /// first group that does. Absent when no key types it by itself (dead keys do not count). A
    /// line feed is the Return key, a tab the Tab key.
    [[nodiscard]] std::optional<KeyStroke> find(char32_t character, std::uint8_t group) const;

    /// The stroke that gives this keysym without modifiers, in `group` if that has it, else in the
    /// first group that does.
    [[nodiscard]] std::optional<KeyStroke> findKeysym(xkb_keysym_t keysym,
                                                      std::uint8_t group) const;

    /// Keys to hold so that exactly `modifiers` are set; what no key sets is left in `remaining`.
    [[nodiscard]] std::vector<std::uint8_t> keysFor(std::uint8_t modifiers,
                                                    std::uint8_t& remaining) const;

    [[nodiscard]] const std::vector<ModifierKeycode>& modifierKeys() const { return modifiers_; }
    /// Every real modifier that some key sets, latches or locks.
    [[nodiscard]] std::uint8_t usedModifiers() const { return usedModifiers_; }
    /// Keys without any meaning in this keymap, highest first.
    [[nodiscard]] const std::vector<std::uint8_t>& spareKeycodes() const { return spare_; }

private:
    void readKey(xkb_keymap* keymap, xkb_keycode_t keycode);

    std::unordered_map<char32_t, std::vector<KeyStroke>> strokes_;
    std::unordered_map<xkb_keysym_t, std::vector<KeyStroke>> keysyms_; ///< level 1 only
    std::vector<ModifierKeycode> modifiers_;
    std::vector<std::uint8_t> spare_;
    std::uint8_t usedModifiers_ = 0;
};

} // namespace kelvora
