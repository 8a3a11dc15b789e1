// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/mapping/alphabet_score.h"
#include "core/mapping/field_conversion.h"
#include "core/mapping/physical_key_pair.h"
#include "core/mapping/token_translator.h"
#include "core/mapping/typed_word_conversion.h"
#include "core/text/utf16_range.h"

namespace kelvora {

/// A text converted into the layout `targetIndex`, 0 or 1.
struct StringConversion {
    std::u16string converted;
    int targetIndex = 0;

    bool operator==(const StringConversion&) const = default;
};

/// The correspondence of two keyboard layouts, 0 and 1, by physical key. An immutable value; any
/// thread. `activeSourceIndex` is the layout that is active now, absent when it is neither; texts
/// compare by canonical equivalence.
class PhysicalLayoutMapping {
public:
    /// Of pairs with the same text on one side, the first decides the conversion of that text.
    /// Pairs that involve a number leave both sides as they are.
    explicit PhysicalLayoutMapping(std::span<const PhysicalKeyPair> pairs);

    /// The text as the same keys type it in the other layout; what has no counterpart is
    /// unchanged. Any `sourceIndex` but 0 means layout 1.
    [[nodiscard]] std::u16string convert(std::u16string_view text, int sourceIndex) const;

    /// The layout the text was typed in, by the letters that only one layout has; a tie goes to
    /// the active layout. Absent when undecided or when nothing would change.
    [[nodiscard]] std::optional<int> direction(std::u16string_view text,
                                               std::optional<int> activeSourceIndex) const;

    /// The whole text converted; absent when nothing would change.
    [[nodiscard]] std::optional<StringConversion>
    convertString(std::u16string_view text, std::optional<int> activeSourceIndex) const;

    /// `convert`, which also follows a caret given in characters. A caret beyond the end lands at
    /// the end, and so does an absent one.
    [[nodiscard]] Translation translate(std::u16string_view text, int sourceIndex,
                                        std::optional<std::int64_t> caret) const;

    /// Converts the selection, or the word at the caret, of a field. Absent when there is no
    /// selection, it does not fit, there is no word, or nothing would change.
    [[nodiscard]] std::optional<FieldConversion>
    convertField(std::u16string_view text, std::optional<Utf16Range> selectedRange,
                 std::optional<int> activeSourceIndex) const;

    /// Converts the last word of a text with the caret at its end. Absent as in `convertField`.
    [[nodiscard]] std::optional<TypedWordConversion>
    convertTypedWord(std::u16string_view text, std::optional<int> activeSourceIndex) const;

    /// Characters of the longest text that converts as one, at least 1.
    [[nodiscard]] std::int64_t maximumTokenLength() const { return maximumTokenLength_; }

private:
    void add(const PhysicalKeyPair& pair);

    TokenTranslator forward_;
    TokenTranslator backward_;
    AlphabetScore alphabets_;
    std::int64_t maximumTokenLength_ = 1;
};

} // namespace kelvora
