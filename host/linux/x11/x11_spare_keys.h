// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_keyboard_control.h"

#include <chrono>
#include <span>
#include <vector>

namespace kelvora {

/// Keys without a meaning, borrowed to type characters that no layout has. All are given their
/// characters at once: an application decodes a key with the map it has then, which may be a later
/// one than the key was pressed with.
class X11SpareKeys {
public:
    /// How long applications get to learn the map before its first key, and to decode the last key
    /// before it is taken back. Measured with GTK 3 and 4, Qt 5 and 6, Chromium and LibreOffice.
    static constexpr std::chrono::milliseconds settleTime{30};
    static constexpr std::chrono::milliseconds decodeTime{200};

    /// Borrows one key for each character, for as many as there are spare keys. Blocks for the
    /// settle time when it borrows any.
    X11SpareKeys(X11KeyboardControl& control, std::span<const char32_t> characters);
    /// Blocks for the decode time and gives the keys back.
    ~X11SpareKeys();
    X11SpareKeys(const X11SpareKeys&) = delete;
    X11SpareKeys& operator=(const X11SpareKeys&) = delete;

    /// The key code for the character, or 0.
    [[nodiscard]] std::uint8_t keycodeFor(char32_t character) const;

private:
    struct Loan {
        char32_t character;
        std::uint8_t keycode;
    };

    X11KeyboardControl& control_;
    std::vector<Loan> loans_;
};

} // namespace kelvora
