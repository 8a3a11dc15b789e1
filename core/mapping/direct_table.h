// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>
#include <vector>

namespace kelvora {

/// A value for each code unit of the scripts that keyboards type, and one value for all the code
/// units beyond them: small enough to be filled anew for every conversion.
template <typename Value>
class DirectTable {
public:
    /// Latin up to and including the kana and the Hangul letters. A power of two, see `coversAll`.
    static constexpr std::size_t size = 0x4000;

    /// As many code units as are worth one test of `coversAll`.
    static constexpr std::size_t blockSize = 64;
    using Block = std::span<const char16_t, blockSize>;

    /// `valueOf` is asked once for each unit below `size`; the others have the value `beyond`.
    template <typename ValueOf>
    DirectTable(ValueOf valueOf, Value beyond) : values_(size + 1, beyond) {
        for (std::size_t unit = 0; unit < size; ++unit) {
            values_[unit] = valueOf(static_cast<char16_t>(unit));
        }
    }

    [[nodiscard]] static constexpr bool covers(char16_t unit) { return unit < size; }

    [[nodiscard]] static bool coversAll(Block units) {
        unsigned bits = 0;
        for (const char16_t unit : units) {
            bits |= unit;
        }
        return bits < size;
    }

    [[nodiscard]] Value operator[](char16_t unit) const {
        return values_[std::min<std::size_t>(unit, size)];
    }

    /// The value of a unit that the table is known to cover.
    [[nodiscard]] Value covered(char16_t unit) const {
        assert(covers(unit));
        return values_[unit];
    }

    void set(char16_t unit, Value value) {
        assert(covers(unit));
        values_[unit] = value;
    }

private:
    std::vector<Value> values_;
};

} // namespace kelvora
