// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "core/mapping/direct_table.h"
#include "core/mapping/physical_key_pair.h"

namespace kelvora {

/// Knows the letters of two layouts, and so which of them only one has. Immutable; any thread.
class AlphabetScore {
public:
    /// A layout's alphabet is every letter on its side of a primary pair.
    explicit AlphabetScore(std::span<const PhysicalKeyPair> pairs);

    /// How many more characters of the text only the first layout has than only the second has;
    /// negative when the second leads.
    [[nodiscard]] std::int64_t lead(std::u16string_view text) const;

private:
    [[nodiscard]] std::int64_t leadOf(std::u16string_view character) const;

    /// The lead of a code unit that is a character by itself, or `indirect`.
    DirectTable<std::int16_t> direct_;
    /// The lead of the letters that `direct_` has no place for, by their NFC text.
    std::map<std::u16string, std::int16_t, std::less<>> others_;
};

} // namespace kelvora
