// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_spare_keys.h"

#include <algorithm>
#include <array>
#include <thread>

namespace kelvora {
namespace {

void setKey(xcb_connection_t* connection, std::uint8_t keycode, xkb_keysym_t keysym) {
    // The same on both levels, so that the server does not make it a letter with two cases.
    const std::array keysyms{keysym, keysym};
    xcb_change_keyboard_mapping(connection, 1, keycode, keysyms.size(), keysyms.data());
}

} // namespace

X11SpareKeys::X11SpareKeys(X11KeyboardControl& control, std::span<const char32_t> characters)
    : control_(control) {
    const std::vector<std::uint8_t>& spare = control_.keys().spareKeycodes();
    const std::size_t count = std::min(characters.size(), spare.size());
    for (std::size_t i = 0; i < count; ++i) {
        const xkb_keysym_t keysym = xkb_utf32_to_keysym(characters[i]);
        if (keysym == XKB_KEY_NoSymbol)
            continue;
        loans_.push_back({characters[i], spare[i]});
        setKey(control_.connection(), spare[i], keysym);
    }
    if (!loans_.empty()) {
        control_.flush();
        std::this_thread::sleep_for(settleTime);
    }
}

X11SpareKeys::~X11SpareKeys() {
    if (loans_.empty())
        return;
    control_.flush();
    std::this_thread::sleep_for(decodeTime);
    // A keymap that came meanwhile may have a meaning for the key: then it is not ours any more.
    if (!control_.synchronize())
        return;
    xkb_keymap* const keymap = control_.keymap();
    for (const Loan& loan : loans_) {
        const xkb_keysym_t* keysyms = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(keymap, loan.keycode, 0, 0, &keysyms);
        if (count == 1 && keysyms[0] == xkb_utf32_to_keysym(loan.character))
            setKey(control_.connection(), loan.keycode, XKB_KEY_NoSymbol);
    }
    control_.flush();
}

std::uint8_t X11SpareKeys::keycodeFor(char32_t character) const {
    const auto loan = std::ranges::find(loans_, character, &Loan::character);
    return loan != loans_.end() ? loan->keycode : std::uint8_t{0};
}

} // namespace kelvora
