// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/keyboard_state.h"

#include "tests/support/real_desktop/windows.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <array>
#include <cstddef>
#include <sstream>

namespace kelvora::real {

namespace {

std::string layoutAt(Display* display, unsigned group) {
    // Five strings, each ended by a zero: rules, model, layouts, variants, options.
    const std::string names = rootStringProperty(display, "_XKB_RULES_NAMES");
    std::istringstream fields(names);
    std::string layouts;
    for (int index = 0; index < 3; ++index) {
        std::getline(fields, layouts, '\0');
    }
    std::istringstream list(layouts);
    std::string name;
    for (unsigned index = 0; index <= group; ++index) {
        name.clear();
        std::getline(list, name, ',');
    }
    return name;
}

XkbStateRec xkbState(Display* display) {
    XkbStateRec state{};
    XkbGetState(display, XkbUseCoreKbd, &state);
    return state;
}

} // namespace

std::string activeLayout(_XDisplay* display) {
    return layoutAt(display, xkbState(display).group);
}

KeyboardState readKeyboardState(_XDisplay* display) {
    KeyboardState result;
    const XkbStateRec state = xkbState(display);
    result.layout = layoutAt(display, state.group);
    result.lockedModifiers = state.locked_mods;

    std::array<char, 32> held{};
    XQueryKeymap(display, held.data());
    for (unsigned keyCode = 0; keyCode < 256; ++keyCode) {
        const unsigned keysOfByte = static_cast<unsigned char>(held.at(keyCode / 8));
        if ((keysOfByte >> (keyCode % 8) & 1U) != 0) {
            result.pressedKeys.push_back(keyCode);
        }
    }

    int first = 0;
    int last = 0;
    int symbolsPerKey = 0;
    XDisplayKeycodes(display, &first, &last);
    const int keyCount = last - first + 1;
    KeySym* const symbols =
        XGetKeyboardMapping(display, static_cast<KeyCode>(first), keyCount, &symbolsPerKey);
    const std::ptrdiff_t symbolCount = std::ptrdiff_t{keyCount} * symbolsPerKey;
    result.keymap.assign(symbols, symbols + symbolCount);
    XFree(symbols);
    return result;
}

void lockLayout(_XDisplay* display, unsigned index) {
    XkbLockGroup(display, XkbUseCoreKbd, index);
    XSync(display, False);
}

void lockModifiers(_XDisplay* display, unsigned modifiers) {
    XkbLockModifiers(display, XkbUseCoreKbd, 0xff, modifiers);
    XSync(display, False);
}

} // namespace kelvora::real
