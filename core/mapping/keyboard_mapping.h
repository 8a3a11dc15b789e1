// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

enum class KeyboardScript : std::uint8_t { latin, cyrillic };

[[nodiscard]] constexpr KeyboardScript opposite(KeyboardScript script) {
    return script == KeyboardScript::latin ? KeyboardScript::cyrillic : KeyboardScript::latin;
}

/// A text converted between the built-in layouts, and the script it was converted into.
struct ScriptConversion {
    std::u16string text;
    KeyboardScript script = KeyboardScript::latin;

    bool operator==(const ScriptConversion&) const = default;
};

/// The Latin (US) and Russian layouts without any layout data from the desktop. Any thread.
class KeyboardMapping {
public:
    KeyboardMapping() = delete;

    // The same keys in the same order: the key left of 1, then the letter rows from the top.
    static constexpr std::u16string_view unshiftedLatin = u"`qwertyuiop[]asdfghjkl;'zxcvbnm,./";
    static constexpr std::u16string_view unshiftedRussian = u"ёйцукенгшщзхъфывапролджэячсмитьбю.";
    static constexpr std::u16string_view shiftedLatin = u"~QWERTYUIOP{}ASDFGHJKL:\"ZXCVBNM<>?";
    static constexpr std::u16string_view shiftedRussian = u"ЁЙЦУКЕНГШЩЗХЪФЫВАПРОЛДЖЭЯЧСМИТЬБЮ,";

    /// The script with more letters, `latin` when equal; absent when there are no letters of
    /// either. Latin letters are the ASCII ones, Cyrillic is U+0400 to U+052F.
    [[nodiscard]] static std::optional<KeyboardScript> detectedScript(std::u16string_view text);

    /// The text as the same keys type it in the opposite layout; other characters are unchanged.
    [[nodiscard]] static std::u16string convert(std::u16string_view text, KeyboardScript from);

    /// `convert` from the detected script; absent when there is none.
    [[nodiscard]] static std::optional<ScriptConversion> converted(std::u16string_view text);
};

} // namespace kelvora
