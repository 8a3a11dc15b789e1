// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "core/text/utf16_range.h"

namespace kelvora {

/// The conversion of a part of a text field.
struct FieldConversion {
    std::u16string text;                     ///< the whole field after the conversion
    std::optional<Utf16Range> selectedRange; ///< selection or caret in the new text
    int targetIndex = 0;                     ///< layout converted into, 0 or 1
    Utf16Range replacementRange;             ///< what was replaced, in the text before
    std::u16string replacement;              ///< what took its place

    bool operator==(const FieldConversion&) const = default;
};

} // namespace kelvora
