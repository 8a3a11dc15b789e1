// SPDX-License-Identifier: MIT
#include "core/mapping/typed_word_conversion.h"

#include <utility>

#include "core/mapping/physical_layout_mapping.h"
#include "core/mapping/text_target.h"
#include "core/text/characters.h"
#include "core/text/normalization.h"

namespace kelvora {

bool TypedWordConversion::operator==(const TypedWordConversion& other) const {
    return deleteCount == other.deleteCount && targetIndex == other.targetIndex &&
           canonicallyEqual(insertion, other.insertion) &&
           canonicallyEqual(bufferAfter, other.bufferAfter);
}

std::optional<TypedWordConversion>
PhysicalLayoutMapping::convertTypedWord(std::u16string_view text,
                                        std::optional<int> activeSourceIndex) const {
    const Utf16Range caret{static_cast<std::int64_t>(text.size()), 0};
    std::optional<FieldConversion> field = convertField(text, caret, activeSourceIndex);
    if (!field) {
        return std::nullopt;
    }
    const std::optional<TextRange> word = TextTarget::validRange(field->replacementRange, text);
    if (!word) {
        return std::nullopt;
    }
    TypedWordConversion result;
    result.deleteCount = static_cast<std::int64_t>(characterCount(text.substr(word->begin)));
    result.insertion = field->replacement;
    result.insertion.append(text.substr(word->end));
    result.targetIndex = field->targetIndex;
    result.bufferAfter = std::move(field->text);
    return result;
}

} // namespace kelvora
