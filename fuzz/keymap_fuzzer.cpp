// SPDX-License-Identifier: MIT
// Keymaps with any keysyms on their keys, and any keys pressed in them, against the library's own
// idea of what they type.
#include "core/text/encoding.h"
#include "fuzz/input.h"
#include "fuzz/plain_text.h"
#include "host/linux/xkb/character_keys.h"
#include "host/linux/xkb/key_interpreter.h"
#include "host/linux/xkb/key_layout_data.h"
#include "host/linux/xkb/key_positions.h"
#include "host/linux/xkb/layout_names.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <set>
#include <string>

namespace kelvora::fuzz {
namespace {

constexpr xkb_keycode_t leftShift = 50;
constexpr xkb_keycode_t capsLock = 66;
constexpr xkb_keycode_t rightAlt = 108;
constexpr std::size_t mostGroups = 4;

struct Key {
    const char* name;
    xkb_keycode_t keycode;
};

/// Those whose keysyms are any; some have no place in the main block.
constexpr Key freeKeys[] = {{"AE01", 10}, {"AE02", 11},  {"AD01", 24}, {"AD02", 25}, {"AC01", 38},
                            {"AC02", 39}, {"TLDE", 49},  {"BKSL", 51}, {"AB01", 52}, {"LSGT", 94},
                            {"AB11", 97}, {"AE13", 132}, {"KP1", 87},  {"FK01", 67}, {"I255", 255}};

constexpr const char* head = R"(xkb_keymap {
xkb_keycodes { minimum = 8; maximum = 255;
<LFSH> = 50; <RTSH> = 62; <CAPS> = 66; <LCTL> = 37; <LALT> = 64; <RALT> = 108; <LVL3> = 92;
<RTRN> = 36; <TAB> = 23; <BKSP> = 22; <SPCE> = 65; <FRNT> = 140;
)";

constexpr const char* fixedParts = R"(};
xkb_types { virtual_modifiers LevelThree, Alt, NumLock;
type "ONE_LEVEL" { modifiers = none; };
type "TWO_LEVEL" { modifiers = Shift; map[Shift] = 2; };
type "ALPHABETIC" { modifiers = Shift+Lock; map[Shift] = 2; map[Lock] = 2; };
type "KEYPAD" { modifiers = Shift+NumLock; map[Shift] = 2; map[NumLock] = 2; };
type "FOUR_LEVEL" { modifiers = Shift+LevelThree;
  map[Shift] = 2; map[LevelThree] = 3; map[Shift+LevelThree] = 4; };
type "FOUR_LEVEL_ALPHABETIC" { modifiers = Shift+Lock+LevelThree;
  map[Shift] = 2; map[Lock] = 2; map[LevelThree] = 3; map[Shift+LevelThree] = 4;
  map[Lock+LevelThree] = 4; map[Lock+Shift+LevelThree] = 3; };
type "FOUR_LEVEL_SEMIALPHABETIC" { modifiers = Shift+Lock+LevelThree;
  map[Shift] = 2; map[Lock] = 2; map[LevelThree] = 3; map[Shift+LevelThree] = 4;
  map[Lock+LevelThree] = 3; preserve[Lock+LevelThree] = Lock;
  map[Lock+Shift+LevelThree] = 4; preserve[Lock+Shift+LevelThree] = Lock; };
type "FOUR_LEVEL_KEYPAD" { modifiers = Shift+NumLock+LevelThree;
  map[Shift] = 2; map[NumLock] = 2; map[LevelThree] = 3; map[Shift+LevelThree] = 4; };
};
xkb_compatibility { virtual_modifiers LevelThree, Alt, NumLock;
interpret ISO_Level3_Shift+AnyOfOrNone(all) { virtualModifier = LevelThree;
  useModMapMods = level1; action = SetMods(modifiers = LevelThree, clearLocks); };
interpret Caps_Lock+AnyOfOrNone(all) { action = LockMods(modifiers = Lock); };
interpret ISO_Level3_Latch+AnyOfOrNone(all) { action = LatchMods(modifiers = LevelThree); };
interpret Alt_L+AnyOf(all) { virtualModifier = Alt; action = SetMods(modifiers = Alt); };
interpret Any+AnyOf(all) { action = SetMods(modifiers = modMapMods, clearLocks); };
};
xkb_symbols {
key <LFSH> { [ Shift_L ] }; key <RTSH> { [ Shift_R ] }; key <CAPS> { [ Caps_Lock ] };
key <LCTL> { [ Control_L ] }; key <LALT> { [ Alt_L, Meta_L ] };
key <LVL3> { [ ISO_Level3_Shift ] }; key <RTRN> { [ Return ] };
key <TAB> { [ Tab, ISO_Left_Tab ] }; key <BKSP> { [ BackSpace ] }; key <SPCE> { [ space ] };
key <FRNT> { [ Hyper_L ], actions[Group1] = [ SetMods(modifiers = Shift+Mod4) ] };
modifier_map Shift { <LFSH>, <RTSH> }; modifier_map Lock { <CAPS> };
modifier_map Control { <LCTL> }; modifier_map Mod1 { <LALT> }; modifier_map Mod5 { <LVL3> };
)";

xkb_keysym_t takeKeysym(Input& input) {
    static constexpr auto others = std::to_array<xkb_keysym_t>({XKB_KEY_NoSymbol,
                                                                XKB_KEY_dead_acute,
                                                                XKB_KEY_dead_grave,
                                                                XKB_KEY_dead_diaeresis,
                                                                XKB_KEY_dead_greek,
                                                                XKB_KEY_dead_currency,
                                                                XKB_KEY_AccessX_Enable,
                                                                XKB_KEY_Multi_key,
                                                                XKB_KEY_ISO_Level3_Shift,
                                                                XKB_KEY_Shift_L,
                                                                XKB_KEY_Shift_R,
                                                                XKB_KEY_Caps_Lock,
                                                                XKB_KEY_Alt_L,
                                                                XKB_KEY_Super_L,
                                                                XKB_KEY_Mode_switch,
                                                                XKB_KEY_ISO_Next_Group,
                                                                XKB_KEY_BackSpace,
                                                                XKB_KEY_Escape,
                                                                XKB_KEY_KP_1,
                                                                XKB_KEY_KP_Enter,
                                                                XKB_KEY_F1,
                                                                XKB_KEY_Left,
                                                                XKB_KEY_Delete,
                                                                XKB_KEY_XF86AudioMute,
                                                                XKB_KEY_Cyrillic_shorti,
                                                                XKB_KEY_Cyrillic_IO,
                                                                XKB_KEY_EuroSign,
                                                                XKB_KEY_ISO_Level3_Latch,
                                                                XKB_KEY_Arabic_lam,
                                                                XKB_KEY_ssharp,
                                                                0x0100200D,
                                                                0x0100D83D,
                                                                0x0101F468,
                                                                0x0110FFFF,
                                                                0x01000301,
                                                                0x01000000});
    const std::uint8_t byte = input.byte();
    if (byte < 0x20)
        return others[byte];
    if (byte < 0xC0)
        return byte;
    if (byte < 0xE0)
        return XKB_KEY_Cyrillic_yu + (byte & 0x1FU);
    if (byte < 0xF0)
        return others[byte % others.size()];
    // Larger values are no keysyms.
    return input.number<std::uint32_t>() & 0x1FFFFFFF;
}

std::string level(Input& input) {
    const std::size_t count = input.below(16) == 0 ? input.below(4) : 1;
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        std::array<char, 16> hexadecimal{};
        std::snprintf(hexadecimal.data(), hexadecimal.size(), "0x%x", takeKeysym(input));
        text.append(i == 0 ? "" : ", ").append(hexadecimal.data());
    }
    return count == 1 ? text : count == 0 ? "NoSymbol" : "{ " + text + " }";
}

/// A name as a server may have it: any bytes but those that would end it here.
std::string takeName(Input& input) {
    std::string name(input.bytes(input.below(12)));
    std::erase_if(name, [](char unit) {
        return unit == '"' || unit == '\\' || unit == '\n' || unit == '\0';
    });
    return name;
}

std::string takeKeymapText(Input& input, bool& hasThirdLevel) {
    std::string text = head;
    for (const Key& key : freeKeys)
        text.append("<").append(key.name).append("> = ").append(std::to_string(key.keycode)) += ';';
    text += fixedParts;
    hasThirdLevel = input.flag();
    text += hasThirdLevel ? "key <RALT> { [ ISO_Level3_Shift ] }; modifier_map Mod5 { <RALT> };\n"
                          : "key <RALT> { [ Alt_R ] }; modifier_map Mod1 { <RALT> };\n";
    const std::size_t groups = 1 + input.below(mostGroups);
    for (std::size_t group = 1; group <= groups; ++group) {
        const std::string name = takeName(input);
        if (!name.empty())
            text.append("name[Group").append(std::to_string(group)).append("] = \"" + name + "\";");
    }
    for (const Key& key : freeKeys) {
        const std::size_t own = input.below(groups + 1);
        if (own == 0)
            continue;
        text.append("key <").append(key.name).append("> { ");
        for (std::size_t group = 1; group <= own; ++group) {
            const std::size_t levels = 1 + input.below(4);
            text.append(group == 1 ? "" : ", ").append("symbols[Group");
            text.append(std::to_string(group)).append("] = [ ");
            for (std::size_t i = 0; i < levels; ++i)
                text.append(i == 0 ? "" : ", ").append(level(input));
            text += " ]";
        }
        text += " };\n";
    }
    return text + "};\n};\n";
}

/// Sequences of dead keys, and of single keysyms, that give any text.
std::string takeComposeText(Input& input) {
    static constexpr auto names = std::to_array<const char*>(
        {"dead_acute", "dead_grave", "Multi_key", "a", "space", "Cyrillic_yu", "Arabic_lam", "A"});
    std::string text;
    for (std::size_t lines = input.below(4); lines > 0; --lines) {
        for (std::size_t keysyms = 1 + input.below(3); keysyms > 0; --keysyms)
            text.append("<").append(names[input.below(names.size())]).append("> ");
        std::string result = toUtf8(takeText(input, 24));
        std::erase_if(result, [](char unit) {
            return unit == '"' || unit == '\\' || (unit >= 0 && unit < ' ');
        });
        text.append(": \"").append(result).append("\"\n");
    }
    return text;
}

/// What the key types after these keys have been pressed.
std::u16string pressed(xkb_keymap* keymap, xkb_keycode_t key, std::uint32_t modifiers,
                       xkb_layout_index_t group) {
    const XkbStatePtr state(xkb_state_new(keymap));
    xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, group);
    if ((modifiers & translationModifier::capsLock) != 0) {
        xkb_state_update_key(state.get(), capsLock, XKB_KEY_DOWN);
        xkb_state_update_key(state.get(), capsLock, XKB_KEY_UP);
    }
    if ((modifiers & translationModifier::shift) != 0)
        xkb_state_update_key(state.get(), leftShift, XKB_KEY_DOWN);
    if ((modifiers & translationModifier::option) != 0)
        xkb_state_update_key(state.get(), rightAlt, XKB_KEY_DOWN);
    std::array<char, 256> utf8{};
    const int length = xkb_state_key_get_utf8(state.get(), key, utf8.data(), utf8.size());
    return length <= 0 ? std::u16string()
                       : toUtf16({utf8.data(), static_cast<std::size_t>(length)});
}

void checkLayoutData(xkb_keymap* keymap, xkb_layout_index_t group, xkb_compose_table* compose,
                     bool hasThirdLevel) {
    const KeyLayoutData data = makeKeyLayoutData(keymap, group, compose);
    require(data != nullptr, "every group has data");
    const KeyLayoutReader reader;
    for (const Key& key : freeKeys) {
        const auto code = keyCodeForKeyName(key.name);
        const bool isInMainBlock =
            code && (*code <= 50 || *code == keyCode::jisYen || *code == keyCode::jisUnderscore);
        for (std::uint32_t modifiers = 0; modifiers < 16; modifiers += 2) {
            std::array<char16_t, 255> units{};
            const std::ptrdiff_t length =
                reader.translate(*data, code.value_or(keyCode::unknown), modifiers, 0, units);
            require(isInMainBlock ? length >= 0 : length == -1, "the main block is in the data");
            const bool isThirdLevel = (modifiers & translationModifier::option) != 0;
            const bool isComparable = isInMainBlock && compose == nullptr &&
                                      *code != keyCode::isoSection &&
                                      (hasThirdLevel || !isThirdLevel);
            if (!isComparable)
                continue;
            // Dead keys alone type nothing in the library, and their own character here.
            const std::u16string expected = pressed(keymap, key.keycode, modifiers, group);
            require(expected.empty() || std::u16string_view(units.data(), static_cast<std::size_t>(
                                                                              length)) == expected,
                    "a key types what the data says");
        }
    }
}

xkb_keysym_t keysymOf(xkb_keymap* keymap, const KeyStroke& stroke) {
    const XkbStatePtr state(xkb_state_new(keymap));
    xkb_state_update_mask(state.get(), stroke.modifiers, 0, 0, 0, 0, stroke.group);
    return xkb_state_key_get_one_sym(state.get(), stroke.keycode);
}

void checkCharacterKeys(xkb_keymap* keymap, std::u16string_view text) {
    const CharacterKeys keys(keymap);
    const auto check = [&](char32_t character) {
        for (std::uint8_t group = 0; group <= mostGroups; ++group) {
            if (const auto stroke = keys.find(character, group)) {
                const xkb_keysym_t keysym = keysymOf(keymap, *stroke);
                require(character == U'\n' ? keysym == XKB_KEY_Return
                                           : xkb_keysym_to_utf32(keysym) == character,
                        "the stroke for a character types it");
            }
            if (const auto stroke = keys.findKeysym(character, group)) {
                require(stroke->modifiers == 0 &&
                            keysymOf(keymap, {stroke->keycode, stroke->group, 0}) == character,
                        "the stroke for a keysym gives it");
            }
        }
    };
    for (char32_t character = 0; character < 0x80; ++character)
        check(character);
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        check(scalar.value);
        offset += scalar.length;
    }
    for (unsigned modifiers = 0; modifiers <= 0xFF; ++modifiers) {
        std::uint8_t remaining = 0;
        unsigned set = 0;
        for (const std::uint8_t keycode :
             keys.keysFor(static_cast<std::uint8_t>(modifiers), remaining)) {
            const auto key =
                std::ranges::find(keys.modifierKeys(), keycode, &ModifierKeycode::keycode);
            require(key != keys.modifierKeys().end(), "modifiers are set by their keys");
            set |= key->modifiers;
        }
        require(set == (modifiers & ~unsigned{remaining}), "the keys set what they are to set");
    }
    for (const std::uint8_t spare : keys.spareKeycodes())
        require(xkb_keymap_num_layouts_for_key(keymap, spare) == 0, "a spare key has no meaning");
}

bool isWellFormed(std::u16string_view text) {
    return toWellFormed(text) == text;
}

/// Keys go down and up in any order, with any state that a server may report.
void checkInterpreter(Input& input, xkb_keymap* keymap, xkb_keymap* next,
                      xkb_compose_table* compose) {
    KeyInterpreter interpreter(compose);
    require(!interpreter.interpret({.keycode = leftShift, .isPress = true}),
            "without a keymap there are no events");
    interpreter.setKeymap(keymap);
    std::set<xkb_keycode_t> touched;
    std::map<xkb_keycode_t, KeyCode> heldShifts;
    const auto feed = [&](const RawKey& key) {
        const auto event = interpreter.interpret(key);
        if (!event)
            return EventFlags{0};
        const std::u16string_view text = event->text.view();
        require(text.empty() || (event->type == EventType::keyDown && !key.isSynthetic),
                "only a user's key that goes down has a text");
        require(text.size() <= 8 && isWellFormed(text), "a text is short and well-formed");
        if (event->type == EventType::flagsChanged) {
            heldShifts.erase(key.keycode);
            if (key.isPress &&
                (event->keyCode == keyCode::leftShift || event->keyCode == keyCode::rightShift))
                heldShifts[key.keycode] = event->keyCode;
        } else {
            require(event->type == (key.isPress ? EventType::keyDown : EventType::keyUp),
                    "a key goes down or up");
        }
        const auto isHeld = [&](KeyCode code) {
            return std::ranges::any_of(heldShifts,
                                       [code](const auto& held) { return held.second == code; });
        };
        require(((event->flags & eventFlag::leftShiftDevice) != 0) == isHeld(keyCode::leftShift) &&
                    ((event->flags & eventFlag::rightShiftDevice) != 0) ==
                        isHeld(keyCode::rightShift),
                "the flags say which Shift is down");
        return event->flags;
    };
    for (std::size_t count = input.below(64); count > 0 && !input.isEmpty(); --count) {
        const std::uint8_t kind = input.byte();
        const bool isFree = (kind & 2) != 0;
        const RawKey key{.keycode = isFree ? freeKeys[input.below(std::size(freeKeys))].keycode
                                           : input.byte(),
                         .isPress = (kind & 1) != 0,
                         .modifiers = input.byte(),
                         .group = (kind & 4) != 0 ? input.number<std::uint32_t>() : kind >> 6,
                         .isSynthetic = (kind & 8) != 0};
        feed(key);
        touched.insert(key.keycode);
        if ((kind & 0x30) == 0x30)
            interpreter.setKeymap(next);
    }
    for (const xkb_keycode_t key : touched)
        feed({.keycode = key, .isPress = false});
    require(feed({.keycode = leftShift, .isPress = false}) == 0,
            "when every key is up, nothing is held");
}

void checkNames(Input& input, xkb_keymap* keymap) {
    static LayoutRegistry registry;
    const RulesNames described = parseRulesNames(input.rest());
    const std::vector<LayoutName> names = layoutNames(described, keymap, registry);
    require(names.size() == xkb_keymap_num_layouts(keymap), "every group has a name or none");
    for (const LayoutName& name : names) {
        require(name.id || name.name.empty(), "what is shown can be chosen");
        require(!name.id || (!name.id->empty() && toUtf8(toUtf16(*name.id)) == *name.id),
                "an identifier is UTF-8");
        require(toUtf8(toUtf16(name.name)) == name.name, "a name is UTF-8");
    }
}

xkb_context* context() {
    static const XkbContextPtr quiet = [] {
        XkbContextPtr made(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
        xkb_context_set_log_level(made.get(), XKB_LOG_LEVEL_CRITICAL);
        return made;
    }();
    return quiet.get();
}

XkbKeymapPtr compiled(const std::string& text) {
    return XkbKeymapPtr(xkb_keymap_new_from_buffer(context(), text.data(), text.size(),
                                                   XKB_KEYMAP_FORMAT_TEXT_V1,
                                                   XKB_KEYMAP_COMPILE_NO_FLAGS));
}

} // namespace
} // namespace kelvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora;
    using namespace kelvora::fuzz;
    // Another keymap comes while keys are down.
    static const XkbKeymapPtr next = [] {
        Input nothing(nullptr, 0);
        bool hasThirdLevel = false;
        return compiled(takeKeymapText(nothing, hasThirdLevel));
    }();
    require(next != nullptr, "the simplest keymap compiles");
    Input input(data, size);
    bool hasThirdLevel = false;
    const XkbKeymapPtr keymap = compiled(takeKeymapText(input, hasThirdLevel));
    if (!keymap)
        return 0;
    const std::string composeText = takeComposeText(input);
    const XkbComposeTablePtr compose(
        composeText.empty() ? nullptr
                            : xkb_compose_table_new_from_buffer(
                                  context(), composeText.data(), composeText.size(), "C.UTF-8",
                                  XKB_COMPOSE_FORMAT_TEXT_V1, XKB_COMPOSE_COMPILE_NO_FLAGS));
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(keymap.get()); ++group)
        checkLayoutData(keymap.get(), group, compose.get(), hasThirdLevel);
    checkCharacterKeys(keymap.get(), takeText(input, 32));
    checkInterpreter(input, keymap.get(), next.get(), compose.get());
    checkNames(input, keymap.get());
    return 0;
}
