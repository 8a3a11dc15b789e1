// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/mapping/direct_table.h"
#include "core/mapping/token_map.h"
#include "core/text/characters.h"

namespace kelvora {

/// A translated text with the place of a caret in it.
struct Translation {
    std::u16string text;
    std::int64_t caret = 0; ///< UTF-16 units from the start of `text`

    bool operator==(const Translation&) const = default;
};

/// One direction of a mapping: replaces the tokens of a text, the longest known one at each place
/// first. Immutable once filled; then any thread.
class TokenTranslator {
public:
    TokenTranslator();

    void reserve(std::size_t entries) { tokens_.reserve(entries); }

    /// Both texts are NFC and not empty; `keyLength` is the number of characters of the key. The
    /// first value of a key stays.
    void add(std::u16string_view key, std::u16string_view value, std::size_t keyLength);

    /// Tokens of up to `maximumTokenLength` characters; `caret` counts characters of `text`.
    [[nodiscard]] Translation translate(std::u16string_view text, std::size_t maximumTokenLength,
                                        std::optional<std::int64_t> caret) const;

private:
    class Run;

    TokenMap tokens_;
    /// What a code unit becomes when it is a token by itself, or `indirect`.
    DirectTable<char16_t> steps_;
};

} // namespace kelvora
