// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/x_display.h"

#include <chrono>
#include <random>
#include <string>
#include <string_view>

namespace kelvora::real {

/// Where key presses come from, as the X server sees it.
enum class KeySource {
    synthetic, ///< another program's XTEST requests
    physical,  ///< the server's own keyboard device
};

/// The time from one key press to the next, drawn evenly from a range.
struct Rhythm {
    std::chrono::milliseconds shortest;
    std::chrono::milliseconds longest;
};

inline constexpr Rhythm personRhythm{std::chrono::milliseconds(30), std::chrono::milliseconds(120)};
inline constexpr Rhythm fastRhythm{std::chrono::milliseconds(10), std::chrono::milliseconds(10)};

/// X key codes of the keys that the tests name; the main block's are the same on every server.
namespace key {
inline constexpr unsigned backspace = 22;
inline constexpr unsigned enter = 36;
inline constexpr unsigned control = 37;
inline constexpr unsigned leftShift = 50;
inline constexpr unsigned rightShift = 62;
inline constexpr unsigned space = 65;
inline constexpr unsigned capsLock = 66;
inline constexpr unsigned numLock = 77;
} // namespace key

/// Presses keys from outside every program, by their place on the keyboard: a character names the
/// key that types it in the plain English layout, whatever layout is active.
class Keyboard {
public:
    explicit Keyboard(_XDisplay* display);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    void setSource(KeySource source) { source_ = source; }
    void setRhythm(Rhythm rhythm) { rhythm_ = rhythm; }

    void press(unsigned keyCode) { post(keyCode, true); }
    void release(unsigned keyCode) { post(keyCode, false); }
    /// Down, a part of the rhythm, up, the rest of the rhythm.
    void tap(unsigned keyCode);
    /// Taps the keys that type `text` in the English layout, Shift held where it takes Shift. '\b'
    /// is Backspace. Aborts on a character that the layout does not type.
    void type(std::string_view text);
    /// Shift twice. The second release is the last thing that happens, without a pause behind it.
    void doubleShift(unsigned keyCode = key::leftShift);
    /// One key with Control held.
    void controlWith(char character);
    /// A key by its keysym name, for example "Left".
    void tapNamed(const char* keysymName) { chord(keysymName); }
    /// Keys by their keysym names, the modifiers first: "Control_L+Shift_L+End".
    void chord(const std::string& names);

private:
    [[nodiscard]] std::chrono::milliseconds nextInterval();
    void post(unsigned keyCode, bool isPress);

    _XDisplay* display_;
    void* physicalDevice_ = nullptr;
    KeySource source_ = KeySource::synthetic;
    Rhythm rhythm_ = fastRhythm;
    std::mt19937 random_{20240229}; // the same rhythm in every run
};

} // namespace kelvora::real
