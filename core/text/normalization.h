// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// Unicode Normalization Form C. Unpaired surrogates stay as they are.
[[nodiscard]] std::u16string toNfc(std::u16string_view text);

/// Unicode canonical equivalence: the equality of texts throughout the program.
[[nodiscard]] bool canonicallyEqual(std::u16string_view left, std::u16string_view right);

/// True when `text` holds `part` as a run of whole characters, compared by canonical equivalence.
/// An empty `part` is in every text.
[[nodiscard]] bool containsText(std::u16string_view text, std::u16string_view part);

} // namespace kelvora
