// SPDX-License-Identifier: MIT
#pragma once

#include "host/key_codes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kelvora {

/// Modifier state of an event: device-independent bits, and the two device bits of Shift.
using EventFlags = std::uint64_t;

namespace eventFlag {
inline constexpr EventFlags leftShiftDevice = 0x2;
inline constexpr EventFlags rightShiftDevice = 0x4;
inline constexpr EventFlags capsLock = 0x10000;
inline constexpr EventFlags shift = 0x20000;
inline constexpr EventFlags control = 0x40000;
inline constexpr EventFlags option = 0x80000;   ///< the third and fifth level (AltGr)
inline constexpr EventFlags command = 0x100000; ///< Alt, Meta, Super, Hyper; posted as Control
inline constexpr EventFlags function = 0x800000;
} // namespace eventFlag

enum class EventType : std::uint32_t {
    leftMouseDown = 1,
    rightMouseDown = 3,
    keyDown = 10,
    keyUp = 11,
    flagsChanged = 12,
    otherMouseDown = 25,
    /// The desktop switched the tap off; it can be enabled again.
    tapDisabledByTimeout = 0xFFFFFFFE,
    tapDisabledByUserInput = 0xFFFFFFFF,
};

/// A set of event types, one bit each: 1 << type. Types above 31 are always delivered.
using EventMask = std::uint32_t;

[[nodiscard]] constexpr EventMask eventMaskBit(EventType type) {
    return EventMask{1} << static_cast<std::uint32_t>(type);
}

/// The text that a key event carries, at most `capacity` UTF-16 units; what is beyond is cut off.
class EventText {
public:
    static constexpr std::size_t capacity = 20;

    EventText() = default;
    explicit EventText(std::u16string_view text) : length_(std::min(text.size(), capacity)) {
        std::copy_n(text.begin(), length_, units_.begin());
    }

    [[nodiscard]] std::u16string_view view() const { return {units_.data(), length_}; }
    [[nodiscard]] bool empty() const { return length_ == 0; }

    friend bool operator==(const EventText& a, const EventText& b) { return a.view() == b.view(); }

private:
    std::array<char16_t, capacity> units_{};
    std::size_t length_ = 0;
};

/// What a key is to a compose sequence (dead keys, Compose).
enum class Composition {
    none,
    underWay, ///< the sequence goes on: its text comes with the last key of it
    broken,   ///< a text came or ended that applications make different things of
};

/// One keyboard or mouse-button event, as an event tap delivers it and as an event poster takes it.
struct InputEvent {
    EventType type = EventType::keyDown;
    KeyCode keyCode = keyCode::unknown; ///< meaningless for mouse events
    /// The modifier state. For a modifier change: the state after it.
    EventFlags flags = 0;
    /// The mark that the poster of a synthetic event wrote; 0 for everybody else's events.
    std::int64_t sourceUserData = 0;
    /// Seconds on the desktop's own monotonic clock; only differences count.
    double timestamp = 0;
    /// What the key types; from a tap at most 8 units. Empty for dead keys and for keys that type
    /// nothing.
    EventText text{};
    /// Of a key that goes down; `none` where nobody follows it.
    Composition composition = Composition::none;

    friend bool operator==(const InputEvent&, const InputEvent&) = default;
};

} // namespace kelvora
