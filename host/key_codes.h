// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora {

/// A virtual key code: names a physical key position, whatever layout is active and whatever the
/// desktop's own number for that key is.
using KeyCode = std::uint16_t;

/// The positions that the program refers to by name. The letters are those of the US layout.
namespace keyCode {
inline constexpr KeyCode a = 0;
inline constexpr KeyCode c = 8;
inline constexpr KeyCode v = 9;
inline constexpr KeyCode isoSection = 10; ///< between left Shift and Z, on ISO keyboards only
inline constexpr KeyCode returnKey = 36;
inline constexpr KeyCode tab = 48;
inline constexpr KeyCode space = 49;
inline constexpr KeyCode backspace = 51;
inline constexpr KeyCode escape = 53;
inline constexpr KeyCode rightCommand = 54;
inline constexpr KeyCode leftCommand = 55;
inline constexpr KeyCode leftShift = 56;
inline constexpr KeyCode capsLock = 57;
inline constexpr KeyCode leftOption = 58;
inline constexpr KeyCode leftControl = 59;
inline constexpr KeyCode rightShift = 60;
inline constexpr KeyCode rightOption = 61;
inline constexpr KeyCode rightControl = 62;
inline constexpr KeyCode function = 63;
inline constexpr KeyCode keypadEnter = 76;
inline constexpr KeyCode jisYen = 93;
inline constexpr KeyCode jisUnderscore = 94;
inline constexpr KeyCode home = 115;
inline constexpr KeyCode pageUp = 116;
inline constexpr KeyCode forwardDelete = 117;
inline constexpr KeyCode end = 119;
inline constexpr KeyCode pageDown = 121;
inline constexpr KeyCode leftArrow = 123;
inline constexpr KeyCode rightArrow = 124;
inline constexpr KeyCode downArrow = 125;
inline constexpr KeyCode upArrow = 126;
/// A key that has no position of its own in this numbering: it types its text and nothing else.
inline constexpr KeyCode unknown = 0xFFFF;
} // namespace keyCode

} // namespace kelvora
