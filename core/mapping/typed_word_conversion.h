// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace kelvora {

/// The edit that repairs the last typed word where the text can only be erased and typed again.
struct TypedWordConversion {
    std::int64_t deleteCount = 0; ///< characters (grapheme clusters) to erase from the end
    std::u16string insertion;     ///< what to type then: the word converted and what followed it
    int targetIndex = 0;          ///< layout converted into, 0 or 1
    std::u16string bufferAfter;   ///< the typed text after the edit

    /// Texts compare by canonical equivalence.
    bool operator==(const TypedWordConversion& other) const;
};

} // namespace kelvora
