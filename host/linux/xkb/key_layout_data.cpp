// SPDX-License-Identifier: MIT
#include "host/linux/xkb/key_layout_data.h"

#include "host/linux/xkb/key_positions.h"
#include "host/linux/xkb/keysym_text.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

// The table, all numbers 16-bit little-endian:
//   magic, version, number of text units,
//   for each modifier combination, for each key: offset and length of its text in units,
//   the text units.
constexpr std::uint16_t magic = 0x4B4C; // "LK"
constexpr std::uint16_t version = 1;
constexpr std::size_t headerUnits = 3;
constexpr std::size_t unitSize = 2;

constexpr KeyCode lastMainBlockKey = 50;
constexpr std::size_t keyCount = lastMainBlockKey + 3; // and the two keys of JIS keyboards
constexpr std::size_t combinationCount = 8;
constexpr std::size_t entryCount = combinationCount * keyCount;
constexpr std::size_t textStart = headerUnits + 2 * entryCount;
constexpr std::size_t maximumTextUnits = 0xFFFF;

constexpr std::uint32_t knownModifiers =
    translationModifier::shift | translationModifier::capsLock | translationModifier::option;

std::optional<std::size_t> keySlot(KeyCode code) {
    if (code <= lastMainBlockKey)
        return code;
    if (code == keyCode::jisYen)
        return lastMainBlockKey + 1;
    if (code == keyCode::jisUnderscore)
        return lastMainBlockKey + 2;
    return std::nullopt;
}

/// Shift, Caps Lock and Option as bits 0 to 2; their bits in a modifier state are adjacent.
constexpr std::size_t combinationIndex(std::uint32_t modifierState) {
    return modifierState >> 1;
}

using LayoutTexts = std::array<std::array<std::u16string, keyCount>, combinationCount>;

/// The real modifiers that the third-level key of this group sets. Absent when no key gives the
/// third level there (the right Alt of `us` is Alt): nobody can type what the keymap has on it.
std::optional<xkb_mod_mask_t> levelThreeMask(xkb_keymap* keymap, xkb_layout_index_t group) {
    const XkbStatePtr state(xkb_state_new(keymap));
    const xkb_keycode_t last = xkb_keymap_max_keycode(keymap);
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); state && key <= last; ++key) {
        const char* name = xkb_keymap_key_get_name(keymap, key);
        // No keyboard has the key LVL3: it only carries the modifier in every keymap.
        if (name == nullptr || std::string_view(name) == "LVL3")
            continue;
        xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, group);
        const xkb_keysym_t keysym = xkb_state_key_get_one_sym(state.get(), key);
        if (keysym != XKB_KEY_ISO_Level3_Shift && keysym != XKB_KEY_ISO_Level3_Latch)
            continue;
        xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
        const xkb_mod_mask_t mask = xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_EFFECTIVE);
        if (mask != 0)
            return mask;
    }
    return std::nullopt;
}

struct MainBlockKey {
    xkb_keycode_t key;
    std::size_t slot;
};

std::vector<MainBlockKey> mainBlockKeys(xkb_keymap* keymap) {
    std::vector<MainBlockKey> keys;
    const xkb_keycode_t last = xkb_keymap_max_keycode(keymap);
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= last; ++key) {
        const char* name = xkb_keymap_key_get_name(keymap, key);
        const auto code = name != nullptr ? keyCodeForKeyName(name) : std::nullopt;
        if (const auto slot = code ? keySlot(*code) : std::nullopt)
            keys.push_back({key, *slot});
    }
    return keys;
}

xkb_mod_mask_t modifierMask(xkb_keymap* keymap, const char* name) {
    const xkb_mod_index_t index = xkb_keymap_mod_get_index(keymap, name);
    return index < 32 ? xkb_mod_mask_t{1} << index : 0;
}

std::u16string keyText(xkb_state* state, xkb_keycode_t key, const KeysymText& keysymText) {
    const xkb_keysym_t* keysyms = nullptr;
    const int count = xkb_state_key_get_syms(state, key, &keysyms);
    if (count == 1) // with Caps Lock applied where the key's type leaves it to us
        return keysymText(xkb_state_key_get_one_sym(state, key));
    std::u16string text;
    for (int index = 0; index < count; ++index)
        text += keysymText(keysyms[index]);
    return text;
}

LayoutTexts readTexts(xkb_keymap* keymap, xkb_layout_index_t group,
                      xkb_compose_table* composeTable) {
    LayoutTexts texts;
    const XkbStatePtr state(xkb_state_new(keymap));
    if (!state)
        return texts;
    const KeysymText keysymText(composeTable);
    const xkb_mod_mask_t shiftMask = modifierMask(keymap, XKB_MOD_NAME_SHIFT);
    const xkb_mod_mask_t lockMask = modifierMask(keymap, XKB_MOD_NAME_CAPS);
    const auto optionMask = levelThreeMask(keymap, group);
    const std::vector<MainBlockKey> keys = mainBlockKeys(keymap);
    for (std::uint32_t modifiers = 0; modifiers <= knownModifiers; modifiers += 2) {
        xkb_mod_mask_t depressed = 0;
        if ((modifiers & translationModifier::shift) != 0)
            depressed |= shiftMask;
        if ((modifiers & translationModifier::option) != 0) {
            if (!optionMask)
                continue;
            depressed |= *optionMask;
        }
        const bool isCapsLocked = (modifiers & translationModifier::capsLock) != 0;
        xkb_state_update_mask(state.get(), depressed, 0, isCapsLocked ? lockMask : 0, 0, 0, group);
        for (const auto& [key, slot] : keys) {
            std::u16string& text = texts[combinationIndex(modifiers)][slot];
            if (text.empty())
                text = keyText(state.get(), key, keysymText);
        }
    }
    return texts;
}

/// Keymaps for boards without the ISO key fill it with characters that are elsewhere too (`<` and
/// `>` in `us`). Left in, they would come before the real key of those characters.
void dropIsoFiller(LayoutTexts& texts) {
    constexpr std::array plainAndShift{std::size_t{0},
                                       combinationIndex(translationModifier::shift)};
    const auto isTypedElsewhere = [&](const std::u16string& text) {
        return std::ranges::any_of(plainAndShift, [&](std::size_t combination) {
            const auto& keys = texts[combination];
            for (std::size_t slot = 0; slot < keyCount; ++slot) {
                if (slot != keyCode::isoSection && keys[slot] == text)
                    return true;
            }
            return false;
        });
    };
    const bool isFiller = std::ranges::all_of(plainAndShift, [&](std::size_t combination) {
        return isTypedElsewhere(texts[combination][keyCode::isoSection]);
    });
    if (!isFiller)
        return;
    for (auto& keys : texts)
        keys[keyCode::isoSection].clear();
}

void append(std::vector<std::byte>& bytes, std::uint16_t unit) {
    bytes.push_back(static_cast<std::byte>(unit & 0xFF));
    bytes.push_back(static_cast<std::byte>(unit >> 8));
}

KeyLayoutData encode(const LayoutTexts& texts) {
    std::u16string pool;
    std::vector<std::byte> bytes;
    bytes.reserve((textStart + entryCount) * unitSize);
    append(bytes, magic);
    append(bytes, version);
    append(bytes, 0);
    for (const auto& keys : texts) {
        for (const std::u16string& text : keys) {
            const bool fits = pool.size() + text.size() <= maximumTextUnits;
            append(bytes, static_cast<std::uint16_t>(pool.size()));
            append(bytes, static_cast<std::uint16_t>(fits ? text.size() : 0));
            if (fits)
                pool += text;
        }
    }
    bytes[2 * unitSize] = static_cast<std::byte>(pool.size() & 0xFF);
    bytes[2 * unitSize + 1] = static_cast<std::byte>(pool.size() >> 8);
    for (const char16_t unit : pool)
        append(bytes, unit);
    return std::make_shared<const std::vector<std::byte>>(std::move(bytes));
}

std::uint16_t unitAt(std::span<const std::byte> bytes, std::size_t index) {
    const auto low = std::to_integer<unsigned>(bytes[index * unitSize]);
    const auto high = std::to_integer<unsigned>(bytes[index * unitSize + 1]);
    return static_cast<std::uint16_t>(low | high << 8);
}

bool hasValidHeader(std::span<const std::byte> bytes) {
    return bytes.size() >= textStart * unitSize && unitAt(bytes, 0) == magic &&
           unitAt(bytes, 1) == version && bytes.size() == (textStart + unitAt(bytes, 2)) * unitSize;
}

} // namespace

std::uint32_t keyboardTypeForModel(std::string_view model) {
    // Models name vendors more than shapes, and most vendors sell one model with every shape; pc105
    // is also what desktops set by default. So ISO unless the model says otherwise: that only adds
    // one key, which layouts without a use for it leave empty.
    const auto contains = [model](std::string_view part) {
        return model.find(part) != std::string_view::npos;
    };
    if (model.starts_with("jp") || contains("_jp") || contains("_jis") || model == "pc98" ||
        model.ends_with("-106"))
        return keyboardTypeCode::jis;
    constexpr auto ansiModels = std::to_array<std::string_view>(
        {"pc86", "pc101", "pc104", "pc104alt", "pc104caps", "dell101", "kr106", "hhk"});
    if (std::ranges::find(ansiModels, model) != ansiModels.end() || contains("_ansi") ||
        contains("_unix"))
        return keyboardTypeCode::ansi;
    return keyboardTypeCode::iso;
}

KeyLayoutData makeKeyLayoutData(xkb_keymap* keymap, xkb_layout_index_t group,
                                xkb_compose_table* composeTable) {
    LayoutTexts texts = readTexts(keymap, group, composeTable);
    dropIsoFiller(texts);
    return encode(texts);
}

std::ptrdiff_t KeyLayoutReader::translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                                          std::uint32_t modifierState,
                                          std::uint32_t /*keyboardType*/,
                                          std::span<char16_t> output) const {
    const auto slot = keySlot(keyCode);
    if (!slot || (modifierState & ~knownModifiers) != 0 || !hasValidHeader(layoutData))
        return -1;
    const std::size_t entry =
        headerUnits + 2 * (combinationIndex(modifierState) * keyCount + *slot);
    const std::size_t offset = unitAt(layoutData, entry);
    const std::size_t length = unitAt(layoutData, entry + 1);
    if (offset + length > unitAt(layoutData, 2))
        return -1;
    const std::size_t written = std::min(length, output.size());
    for (std::size_t index = 0; index < written; ++index)
        output[index] = unitAt(layoutData, textStart + offset + index);
    return static_cast<std::ptrdiff_t>(length);
}

PhysicalLayoutType KeyLayoutReader::layoutType(std::uint32_t keyboardType) const {
    switch (keyboardType) {
    case keyboardTypeCode::iso:
        return PhysicalLayoutType::iso;
    case keyboardTypeCode::jis:
        return PhysicalLayoutType::jis;
    default:
        return PhysicalLayoutType::ansi;
    }
}

} // namespace kelvora
