// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/input.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::fuzz {

// Texts to try, and what ICU by itself makes of them, without any of the program's short cuts.

/// The next text, up to a zero byte: ASCII as it is, other bytes for what joins, composes, reorders
/// and breaks, and for the letters of keyboards; 0xFF takes a code unit from the two bytes after
/// it.
[[nodiscard]] std::u16string takeText(Input& input, std::size_t maximumUnits = 4096);

/// The offsets of the character boundaries, 0 and the end among them.
[[nodiscard]] std::vector<std::size_t> plainBoundaries(std::u16string_view text);
[[nodiscard]] std::vector<std::u16string_view> plainCharacters(std::u16string_view text);
[[nodiscard]] std::u16string plainNfc(std::u16string_view text);
[[nodiscard]] std::u16string plainNfd(std::u16string_view text);

} // namespace kelvora::fuzz
