// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/keyboard_state.h"

#include "tests/support/real_desktop/windows.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <sstream>

namespace kelvora::real {

namespace {

/// The part of a text at `index`, all the parts ended by `separator`.
std::string partAt(const std::string& text, unsigned index, char separator) {
    std::istringstream parts(text);
    std::string part;
    for (unsigned count = 0; count <= index; ++count) {
        part.clear();
        std::getline(parts, part, separator);
    }
    return part;
}

XkbStateRec xkbState(Display* display) {
    XkbStateRec state{};
    XkbGetState(display, XkbUseCoreKbd, &state);
    return state;
}

} // namespace

std::string activeLayout(_XDisplay* display) {
    // Five strings, each ended by a zero: rules, model, layouts, variants, options.
    const std::string layouts = partAt(rootStringProperty(display, "_XKB_RULES_NAMES"), 2, '\0');
    return partAt(layouts, xkbState(display).group, ',');
}

KeyboardState readKeyboardState(_XDisplay* display) {
    KeyboardState result;
    result.layout = activeLayout(display);
    result.lockedModifiers = xkbState(display).locked_mods;

    char held[32] = {};
    XQueryKeymap(display, held);
    for (unsigned keyCode = 0; keyCode < 256; ++keyCode)
        if (((static_cast<unsigned>(held[keyCode / 8]) >> (keyCode % 8)) & 1U) != 0)
            result.pressedKeys.push_back(keyCode);

    int first = 0;
    int last = 0;
    int symbolsPerKey = 0;
    XDisplayKeycodes(display, &first, &last);
    const int keyCount = last - first + 1;
    KeySym* const symbols =
        XGetKeyboardMapping(display, static_cast<KeyCode>(first), keyCount, &symbolsPerKey);
    result.keymap.assign(symbols, symbols + std::ptrdiff_t{keyCount} * symbolsPerKey);
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
