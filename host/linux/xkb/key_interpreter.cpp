// SPDX-License-Identifier: MIT
#include "host/linux/xkb/key_interpreter.h"

#include "core/text/encoding.h"
#include "host/linux/xkb/key_positions.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace kelvora {
namespace {

constexpr std::uint8_t shiftModifier = 1;
constexpr std::uint8_t lockModifier = 2;
constexpr std::uint8_t controlModifier = 4;
constexpr std::size_t tapTextLength = 8;

struct ModifierKey {
    KeyCode keyCode;
    EventFlags flag; ///< 0 for locks and group switches, which set no flag of their own
};

constexpr bool isOptionKeysym(xkb_keysym_t keysym) {
    return keysym == XKB_KEY_ISO_Level3_Shift || keysym == XKB_KEY_ISO_Level3_Latch ||
           keysym == XKB_KEY_ISO_Level5_Shift || keysym == XKB_KEY_ISO_Level5_Latch ||
           keysym == XKB_KEY_Mode_switch;
}

constexpr bool isCommandKeysym(xkb_keysym_t keysym) {
    return keysym >= XKB_KEY_Meta_L && keysym <= XKB_KEY_Hyper_R; // Meta, Alt, Super, Hyper
}

/// Modifier, lock and group keys by what they do here, whatever position they have.
std::optional<ModifierKey> modifierKey(xkb_keysym_t keysym, std::string_view keyName) {
    switch (keysym) {
    case XKB_KEY_Shift_L:
    case XKB_KEY_Shift_R: {
        const bool isRight = keyName == "RTSH" || (keysym == XKB_KEY_Shift_R && keyName != "LFSH");
        return ModifierKey{isRight ? keyCode::rightShift : keyCode::leftShift, eventFlag::shift};
    }
    case XKB_KEY_Control_L:
        return ModifierKey{keyCode::leftControl, eventFlag::control};
    case XKB_KEY_Control_R:
        return ModifierKey{keyCode::rightControl, eventFlag::control};
    case XKB_KEY_Caps_Lock:
    case XKB_KEY_Shift_Lock:
        return ModifierKey{keyCode::capsLock, 0};
    case XKB_KEY_Num_Lock:
    case XKB_KEY_Scroll_Lock:
        return ModifierKey{keyCode::unknown, 0};
    default:
        break;
    }
    if (isOptionKeysym(keysym))
        return ModifierKey{keyName == "LALT" ? keyCode::leftOption : keyCode::rightOption,
                           eventFlag::option};
    if (isCommandKeysym(keysym))
        return ModifierKey{keyName == "RALT" || keyName == "RWIN" ? keyCode::rightCommand
                                                                  : keyCode::leftCommand,
                           eventFlag::command};
    // ISO_Lock ... ISO_Last_Group_Lock: every other lock and every way of switching groups.
    if (keysym >= XKB_KEY_ISO_Lock && keysym <= XKB_KEY_ISO_Level5_Lock)
        return ModifierKey{keyCode::unknown, 0};
    return std::nullopt;
}

/// Keys that act by what they are called, also where an option has moved them.
std::optional<KeyCode> functionKey(xkb_keysym_t keysym) {
    switch (keysym) {
    case XKB_KEY_BackSpace:
    case XKB_KEY_Terminate_Server: // Control-Alt-Backspace
        return keyCode::backspace;
    case XKB_KEY_Return:
    case XKB_KEY_Linefeed:
        return keyCode::returnKey;
    case XKB_KEY_KP_Enter:
        return keyCode::keypadEnter;
    case XKB_KEY_Tab:
    case XKB_KEY_KP_Tab:
    case XKB_KEY_ISO_Left_Tab:
        return keyCode::tab;
    case XKB_KEY_Escape:
        return keyCode::escape;
    case XKB_KEY_Delete:
    case XKB_KEY_KP_Delete:
        return keyCode::forwardDelete;
    case XKB_KEY_Home:
    case XKB_KEY_KP_Home:
    case XKB_KEY_Begin:
    case XKB_KEY_KP_Begin:
        return keyCode::home;
    case XKB_KEY_End:
    case XKB_KEY_KP_End:
        return keyCode::end;
    case XKB_KEY_Page_Up:
    case XKB_KEY_KP_Page_Up:
        return keyCode::pageUp;
    case XKB_KEY_Page_Down:
    case XKB_KEY_KP_Page_Down:
        return keyCode::pageDown;
    case XKB_KEY_Left:
    case XKB_KEY_KP_Left:
        return keyCode::leftArrow;
    case XKB_KEY_Right:
    case XKB_KEY_KP_Right:
        return keyCode::rightArrow;
    case XKB_KEY_Down:
    case XKB_KEY_KP_Down:
        return keyCode::downArrow;
    case XKB_KEY_Up:
    case XKB_KEY_KP_Up:
        return keyCode::upArrow;
    default:
        return std::nullopt;
    }
}

/// Sound, screen, power, radio: what the desktop does itself. Other keys of the same block act on
/// the application (Back, Paste, Close) or bring up another one.
constexpr bool isDesktopKey(xkb_keysym_t keysym) {
    constexpr std::pair<xkb_keysym_t, xkb_keysym_t> ranges[]{
        {XKB_KEY_XF86MonBrightnessUp, XKB_KEY_XF86MonBrightnessCycle}, // and the keyboard's light
        {XKB_KEY_XF86Standby, XKB_KEY_XF86AudioNext},
        {XKB_KEY_XF86AudioRecord, XKB_KEY_XF86AudioRecord},
        {XKB_KEY_XF86PowerDown, XKB_KEY_XF86ContrastAdjust},
        {XKB_KEY_XF86PowerOff,
         XKB_KEY_XF86ScreenSaver}, // WakeUp is what some keyboards send for Fn
        {XKB_KEY_XF86Sleep, XKB_KEY_XF86Sleep},
        {XKB_KEY_XF86AudioPause, XKB_KEY_XF86AudioPause},
        {XKB_KEY_XF86BrightnessAdjust, XKB_KEY_XF86BrightnessAdjust},
        {XKB_KEY_XF86AudioRewind, XKB_KEY_XF86AudioRewind},
        {XKB_KEY_XF86Display, XKB_KEY_XF86Display},
        {XKB_KEY_XF86Battery, XKB_KEY_XF86FrameForward}, // radios, then the player's controls
        {XKB_KEY_XF86Suspend, XKB_KEY_XF86AudioMicMute}, // and the touchpad
        {XKB_KEY_XF86WWAN, XKB_KEY_XF86RotationLockToggle},
        {XKB_KEY_XF86Next_VMode, XKB_KEY_XF86Prev_VMode},
        {XKB_KEY_XF86BrightnessAuto, XKB_KEY_XF86DisplayOff},
    };
    return std::ranges::any_of(ranges, [keysym](const auto& range) {
        return keysym >= range.first && keysym <= range.second;
    });
}

std::string_view keyNameOf(xkb_keymap* keymap, xkb_keycode_t keycode) {
    const char* name = xkb_keymap_key_get_name(keymap, keycode);
    return name != nullptr ? std::string_view(name) : std::string_view();
}

/// The start of the text, of at most `units`; a pair of surrogates stays or goes as a whole.
std::u16string_view cutOff(std::u16string_view text, std::size_t units) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t next = end + decodeScalar(text, end).length;
        if (next > units)
            break;
        end = next;
    }
    return text.substr(0, end);
}

/// What the key does when nothing is held.
xkb_keysym_t baseKeysym(xkb_keymap* keymap, xkb_keycode_t keycode, std::uint32_t group) {
    const xkb_keysym_t* keysyms = nullptr;
    const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(keymap, keycode);
    if (layouts == 0)
        return XKB_KEY_NoSymbol;
    const int count = xkb_keymap_key_get_syms_by_level(
        keymap, keycode, group < layouts ? group : group % layouts, 0, &keysyms);
    return count > 0 ? keysyms[0] : static_cast<xkb_keysym_t>(XKB_KEY_NoSymbol);
}

} // namespace

ModifierRoles ModifierRoles::of(xkb_keymap* keymap) {
    ModifierRoles roles;
    const XkbStatePtr state(xkb_state_new(keymap));
    const xkb_keycode_t last = xkb_keymap_max_keycode(keymap);
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= last; ++key) {
        const xkb_keysym_t keysym = baseKeysym(keymap, key, 0);
        if (!isOptionKeysym(keysym) && !isCommandKeysym(keysym))
            continue;
        xkb_state_update_key(state.get(), key, XKB_KEY_DOWN);
        const auto set = static_cast<std::uint8_t>(
            xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_EFFECTIVE) & 0xFF);
        xkb_state_update_key(state.get(), key, XKB_KEY_UP);
        // Latches outlive their key.
        xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, 0);
        auto& role = isOptionKeysym(keysym) ? roles.option : roles.command;
        role = static_cast<std::uint8_t>(role | (set & ~(shiftModifier | lockModifier)));
    }
    // A bit that both kinds of key set types text: the third level wins.
    roles.command = static_cast<std::uint8_t>(roles.command & ~roles.option);
    return roles;
}

KeyInterpreter::KeyInterpreter(xkb_compose_table* composeTable)
    : compose_(composeTable != nullptr
                   ? xkb_compose_state_new(composeTable, XKB_COMPOSE_STATE_NO_FLAGS)
                   : nullptr) {}

void KeyInterpreter::setKeymap(xkb_keymap* keymap) {
    if (keymap_.get() == keymap)
        return;
    keymap_.reset(xkb_keymap_ref(keymap));
    state_.reset(xkb_state_new(keymap));
    roles_ = ModifierRoles::of(keymap);
}

void KeyInterpreter::reset() {
    held_.fill(0);
    isComposing_ = false;
    if (compose_)
        xkb_compose_state_reset(compose_.get());
}

EventFlags KeyInterpreter::flagsFor(std::uint8_t modifiers) const {
    EventFlags flags = 0;
    if ((modifiers & shiftModifier) != 0)
        flags |= eventFlag::shift;
    if ((modifiers & lockModifier) != 0)
        flags |= eventFlag::capsLock;
    if ((modifiers & controlModifier) != 0)
        flags |= eventFlag::control;
    if ((modifiers & roles_.option) != 0)
        flags |= eventFlag::option;
    if ((modifiers & roles_.command) != 0)
        flags |= eventFlag::command;
    for (std::size_t key = 0; key < held_.size(); ++key)
        if (held_[key] == eventFlag::shift)
            flags |= heldKeyCode_[key] == keyCode::rightShift ? eventFlag::rightShiftDevice
                                                              : eventFlag::leftShiftDevice;
    return flags;
}

bool KeyInterpreter::isHeld(EventFlags bit, xkb_keycode_t except) const {
    for (xkb_keycode_t key = 0; key < held_.size(); ++key)
        if (held_[key] == bit && key != except)
            return true;
    return false;
}

EventFlags KeyInterpreter::flagsAfterChange(const RawKey& key, EventFlags bit) {
    held_[key.keycode] = key.isPress ? bit : 0;
    EventFlags flags = flagsFor(key.modifiers);
    if (key.isPress)
        flags |= bit;
    else if (!isHeld(bit, key.keycode))
        flags &= ~bit;
    return flags;
}

std::optional<InputEvent> KeyInterpreter::interpret(const RawKey& key) {
    if (!keymap_ || key.keycode >= held_.size())
        return std::nullopt;
    const std::string_view name = keyNameOf(keymap_.get(), key.keycode);
    // A key that went down as a modifier comes up as one, whatever the keymap says by then.
    const xkb_keysym_t base = baseKeysym(keymap_.get(), key.keycode, key.group);
    InputEvent event;
    const EventFlags heldBit = held_[key.keycode];
    if (!key.isPress && heldBit != 0) {
        event.type = EventType::flagsChanged;
        event.keyCode = heldKeyCode_[key.keycode];
        event.flags = flagsAfterChange(key, heldBit);
        return event;
    }
    if (const auto modifier = modifierKey(base, name)) {
        if (!key.isPress && modifier->flag != 0)
            return std::nullopt;
        event.type = EventType::flagsChanged;
        event.keyCode = modifier->keyCode;
        heldKeyCode_[key.keycode] = modifier->keyCode;
        event.flags = flagsAfterChange(key, modifier->flag);
        return event;
    }
    xkb_state_update_mask(state_.get(), key.modifiers, 0, 0, 0, 0, key.group);
    const xkb_keysym_t keysym = xkb_state_key_get_one_sym(state_.get(), key.keycode);
    if (isDesktopKey(keysym))
        return std::nullopt;
    event.type = key.isPress ? EventType::keyDown : EventType::keyUp;
    event.keyCode =
        functionKey(keysym).value_or(keyCodeForKeyName(name).value_or(keyCode::unknown));
    event.flags = flagsFor(key.modifiers);
    if (key.isPress && !key.isSynthetic)
        addText(event, key, keysym);
    return event;
}

void KeyInterpreter::addText(InputEvent& event, const RawKey& key, xkb_keysym_t keysym) {
    std::array<char, 64> utf8{};
    int length = xkb_state_key_get_utf8(state_.get(), key.keycode, utf8.data(), utf8.size());
    if (compose_ && xkb_compose_state_feed(compose_.get(), keysym) == XKB_COMPOSE_FEED_ACCEPTED) {
        const bool isFirst = !std::exchange(isComposing_, false);
        switch (xkb_compose_state_get_status(compose_.get())) {
        case XKB_COMPOSE_COMPOSING:
            isComposing_ = true;
            event.composition = Composition::underWay;
            return;
        case XKB_COMPOSE_CANCELLED:
            xkb_compose_state_reset(compose_.get());
            event.composition = Composition::broken;
            return;
        case XKB_COMPOSE_COMPOSED: {
            const int ownLength = length;
            length = xkb_compose_state_get_utf8(compose_.get(), utf8.data(), utf8.size());
            xkb_compose_state_reset(compose_.get());
            // One key that types several characters types a ligature of them in other toolkits.
            if (isFirst && length != ownLength)
                event.composition = Composition::broken;
            break;
        }
        case XKB_COMPOSE_NOTHING:
            break;
        }
    }
    if (length <= 0 || static_cast<std::size_t>(length) >= utf8.size())
        return;
    const std::u16string text =
        toUtf16(std::string_view(utf8.data(), static_cast<std::size_t>(length)));
    event.text = EventText(cutOff(text, tapTextLength));
}

} // namespace kelvora
