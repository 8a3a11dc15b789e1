// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "core/text/utf16_range.h"

namespace kelvora {

/// A half-open range of UTF-16 offsets of one text, both on character boundaries of it.
struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    [[nodiscard]] bool isEmpty() const { return begin == end; }
    [[nodiscard]] std::u16string_view in(std::u16string_view text) const {
        return text.substr(begin, end - begin);
    }
    [[nodiscard]] Utf16Range utf16Range() const {
        return {static_cast<std::int64_t>(begin), static_cast<std::int64_t>(end - begin)};
    }
    bool operator==(const TextRange&) const = default;
};

/// Decides what of a text a conversion is about. Any thread.
class TextTarget {
public:
    TextTarget() = delete;

    /// The range in the text; absent when it does not fit or splits a character.
    [[nodiscard]] static std::optional<TextRange> validRange(Utf16Range range,
                                                             std::u16string_view text);

    /// The selection as it is, or for a caret the word it is in, at the end of, or has left by
    /// nothing but spaces on the same line. Absent when there is no such word or the selection is
    /// not valid.
    [[nodiscard]] static std::optional<TextRange> range(std::u16string_view text,
                                                        Utf16Range selection);
};

} // namespace kelvora
