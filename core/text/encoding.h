// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kelvora {

/// One step of a walk over the Unicode scalars of a UTF-16 text. An unpaired surrogate is a step
/// of its own whose `value` is the surrogate's code point, U+D800 to U+DFFF.
struct DecodedScalar {
    char32_t value = 0;
    std::size_t length = 0; ///< code units taken
};

/// The scalar that starts at `offset`, which must be less than `text.size()`.
[[nodiscard]] constexpr DecodedScalar decodeScalar(std::u16string_view text, std::size_t offset) {
    const char32_t lead = text[offset];
    if (lead >= 0xD800 && lead <= 0xDBFF && offset + 1 < text.size()) {
        const char32_t trail = text[offset + 1];
        if (trail >= 0xDC00 && trail <= 0xDFFF) {
            return {0x10000 + ((lead - 0xD800) << 10) + (trail - 0xDC00), 2};
        }
    }
    return {lead, 1};
}

/// UTF-8 for the world outside; each unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string toUtf8(std::u16string_view text);

/// UTF-16 from outside UTF-8; each maximal malformed stretch becomes one U+FFFD (Unicode standard,
/// "U+FFFD Substitution of Maximal Subparts").
[[nodiscard]] std::u16string toUtf16(std::string_view text);

/// The text with each unpaired surrogate replaced by U+FFFD.
[[nodiscard]] std::u16string toWellFormed(std::u16string_view text);

} // namespace kelvora
