// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_sources.h"
#include "host/key_codes.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace kelvora {

/// Modifier state of a translation: the event-modifier word shifted right by 8 bits.
namespace translationModifier {
inline constexpr std::uint32_t shift = 0x2;
inline constexpr std::uint32_t capsLock = 0x4;
inline constexpr std::uint32_t option = 0x8;
} // namespace translationModifier

/// What a key types in a layout, read from that layout's own data. No state; any thread.
class KeyTranslator {
public:
    virtual ~KeyTranslator() = default;

    /// The text of one key press with dead keys off: a dead key yields its own spacing character.
    /// Writes at most `output.size()` UTF-16 units (possibly malformed, as the layout has them).
    /// Returns the number of units, or -1 when the data cannot be used or the key is not in it; 0
    /// when the key types nothing.
    [[nodiscard]] virtual std::ptrdiff_t translate(std::span<const std::byte> layoutData,
                                                   KeyCode keyCode, std::uint32_t modifierState,
                                                   std::uint32_t keyboardType,
                                                   std::span<char16_t> output) const = 0;

    /// The shape of the keyboard that `keyboardType` (InputSources::keyboardType) names; ANSI when
    /// the code is unknown.
    [[nodiscard]] virtual PhysicalLayoutType layoutType(std::uint32_t keyboardType) const = 0;
};

} // namespace kelvora
