// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kelvora {

// Classes of a character (a grapheme cluster) go by its first scalar; an empty one is in no class.

/// Unicode property Alphabetic.
[[nodiscard]] bool isLetter(std::u16string_view character);

/// Unicode Numeric_Type other than None: digits, fractions, Roman numerals, ideographic numbers.
[[nodiscard]] bool isNumber(std::u16string_view character);

/// Unicode property White_Space.
[[nodiscard]] bool isWhitespace(std::u16string_view character);

/// One Backspace erases all of it in every toolkit: a single scalar, or one with marks in a script
/// (Latin, Cyrillic, Greek, Hangul) whose letters are not taken apart again.
[[nodiscard]] bool isErasedAtOnce(std::u16string_view character);

/// Starts with LF, VT, FF, CR, NEL, U+2028 or U+2029; CR LF counts by its CR.
[[nodiscard]] bool isLineBreak(std::u16string_view character);

/// General category Cc or Cf: controls and invisible format characters (joiners, marks, tags).
[[nodiscard]] bool isControl(char32_t scalar);

/// True when any scalar of the text is a control in the sense of `isControl`.
[[nodiscard]] bool containsControl(std::u16string_view text);

/// The text without white space and line breaks (general categories Z*, U+0009-U+000D, U+0085) at
/// both ends. Works on scalars, so a mark that follows a space stays.
[[nodiscard]] std::u16string_view trimmed(std::u16string_view text);

} // namespace kelvora
