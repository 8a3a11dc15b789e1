// SPDX-License-Identifier: MIT
#include "host/linux/xkb/character_keys.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <bit>

namespace kelvora {
namespace {

constexpr std::uint8_t lockModifier = 2;
constexpr xkb_keycode_t lastKeycode = 255; // what a server's key events can hold

constexpr bool isKeypad(xkb_keysym_t keysym) {
    return keysym >= XKB_KEY_KP_Space && keysym <= XKB_KEY_KP_9;
}

/// The character that a press of this keysym types by itself, or 0.
char32_t characterOf(xkb_keysym_t keysym) {
    if (keysym == XKB_KEY_Return)
        return U'\n';
    // What a keypad key types depends on Num Lock.
    if (isKeypad(keysym))
        return 0;
    const std::uint32_t character = xkb_keysym_to_utf32(keysym);
    return character == 0x7F || (character < 0x20 && character != '\t') ? 0 : character;
}

/// The modifiers that lead to a level: the smallest set, and Caps Lock only where there is no
/// other.
std::optional<std::uint8_t> modifiersFor(xkb_keymap* keymap, xkb_keycode_t key,
                                         xkb_layout_index_t group, xkb_level_index_t level) {
    std::array<xkb_mod_mask_t, 16> masks{};
    const std::size_t count =
        xkb_keymap_key_get_mods_for_level(keymap, key, group, level, masks.data(), masks.size());
    std::optional<std::uint8_t> best;
    const auto cost = [](std::uint8_t mask) {
        return std::popcount(mask) + ((mask & lockModifier) != 0 ? 16 : 0);
    };
    for (std::size_t i = 0; i < count; ++i) {
        if (masks[i] > 0xFF)
            continue;
        const auto mask = static_cast<std::uint8_t>(masks[i]);
        if (!best || cost(mask) < cost(*best))
            best = mask;
    }
    return best;
}

template <typename Key>
const KeyStroke* bestStroke(const std::unordered_map<Key, std::vector<KeyStroke>>& strokes, Key key,
                            std::uint8_t group) {
    const auto found = strokes.find(key);
    if (found == strokes.end())
        return nullptr;
    const auto rank = [group](const KeyStroke& stroke) {
        return std::pair(stroke.group == group ? -1 : int{stroke.group},
                         std::popcount(stroke.modifiers));
    };
    return &*std::ranges::min_element(found->second, {}, rank);
}

} // namespace

CharacterKeys::CharacterKeys(xkb_keymap* keymap) {
    const XkbStatePtr state(xkb_state_new(keymap));
    const xkb_keycode_t last = std::min(xkb_keymap_max_keycode(keymap), lastKeycode);
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= last; ++key) {
        const auto keycode = static_cast<std::uint8_t>(key);
        if (xkb_keymap_num_layouts_for_key(keymap, key) == 0) {
            spare_.push_back(keycode);
            continue;
        }
        const auto modifiers = [&](xkb_state_component component) {
            return static_cast<std::uint8_t>(xkb_state_serialize_mods(state.get(), component) &
                                             0xFF);
        };
        xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
        const std::uint8_t set = modifiers(XKB_STATE_MODS_DEPRESSED);
        xkb_state_update_key(state.get(), key, XKB_KEY_UP);
        const std::uint8_t kept =
            modifiers(XKB_STATE_MODS_LOCKED) | modifiers(XKB_STATE_MODS_LATCHED);
        xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, 0);
        usedModifiers_ = static_cast<std::uint8_t>(usedModifiers_ | set | kept);
        if (set != 0 && kept == 0)
            modifiers_.push_back({keycode, set});
        readKey(keymap, key);
    }
    // The lowest unused key codes are the likeliest to be some keyboard's real keys.
    std::ranges::reverse(spare_);
}

void CharacterKeys::readKey(xkb_keymap* keymap, xkb_keycode_t key) {
    const xkb_layout_index_t groups = xkb_keymap_num_layouts_for_key(keymap, key);
    for (xkb_layout_index_t group = 0; group < groups && group < 4; ++group) {
        const xkb_level_index_t levels = xkb_keymap_num_levels_for_key(keymap, key, group);
        for (xkb_level_index_t level = 0; level < levels; ++level) {
            const xkb_keysym_t* keysyms = nullptr;
            if (xkb_keymap_key_get_syms_by_level(keymap, key, group, level, &keysyms) != 1)
                continue;
            KeyStroke stroke{static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(group), 0};
            if (level == 0)
                keysyms_[keysyms[0]].push_back(stroke);
            const char32_t character = characterOf(keysyms[0]);
            const auto modifiers = modifiersFor(keymap, key, group, level);
            if (character == 0 || !modifiers)
                continue;
            stroke.modifiers = *modifiers;
            strokes_[character].push_back(stroke);
        }
    }
}

std::optional<KeyStroke> CharacterKeys::find(char32_t character, std::uint8_t group) const {
    const KeyStroke* stroke = bestStroke(strokes_, character, group);
    return stroke != nullptr ? std::optional(*stroke) : std::nullopt;
}

std::optional<KeyStroke> CharacterKeys::findKeysym(xkb_keysym_t keysym, std::uint8_t group) const {
    const KeyStroke* stroke = bestStroke(keysyms_, keysym, group);
    return stroke != nullptr ? std::optional(*stroke) : std::nullopt;
}

std::vector<std::uint8_t> CharacterKeys::keysFor(std::uint8_t modifiers,
                                                 std::uint8_t& remaining) const {
    std::vector<std::uint8_t> keys;
    remaining = modifiers;
    for (const ModifierKeycode& key : modifiers_) {
        if (remaining == 0)
            break;
        const bool adds = (key.modifiers & remaining) != 0;
        const bool addsNothingElse = (key.modifiers & ~modifiers) == 0;
        if (adds && addsNothingElse) {
            keys.push_back(key.keycode);
            remaining = static_cast<std::uint8_t>(remaining & ~key.modifiers);
        }
    }
    return keys;
}

} // namespace kelvora
