// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kelvora {

/// What a UTF-16 code unit is, looked at alone. A surrogate has no trait at all.
enum class CodeUnitTrait : std::uint8_t {
    /// Next to units of the same trait it is a whole character (grapheme cluster) and already NFC:
    /// neither segmentation nor normalisation ever joins two such neighbours. Next to any other
    /// unit it may be part of something longer.
    standalone = 1,
    letter = 2,
    number = 4,
    whitespace = 8,
    control = 16,
};

/// The traits of all 65536 code units, derived from the Unicode character database on first use,
/// which takes some milliseconds. Any thread.
class CodeUnitTraits {
public:
    static const CodeUnitTraits& table();

    [[nodiscard]] bool has(char16_t unit, CodeUnitTrait trait) const {
        return (bits_[unit] & static_cast<std::uint8_t>(trait)) != 0;
    }

    [[nodiscard]] bool isStandalone(char16_t unit) const {
        return has(unit, CodeUnitTrait::standalone);
    }

    /// True when the whole text is standalone units: every unit a character, and the text NFC.
    [[nodiscard]] bool isStandalone(std::u16string_view text) const;

private:
    CodeUnitTraits();

    std::array<std::uint8_t, 65536> bits_;
};

} // namespace kelvora
