// SPDX-License-Identifier: MIT
#include "core/mapping/field_conversion.h"

#include <utility>

#include "core/mapping/physical_layout_mapping.h"
#include "core/mapping/text_target.h"
#include "core/text/characters.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

std::int64_t asCount(std::size_t size) {
    return static_cast<std::int64_t>(size);
}

} // namespace

std::optional<FieldConversion>
PhysicalLayoutMapping::convertField(std::u16string_view text,
                                    std::optional<Utf16Range> selectedRange,
                                    std::optional<int> activeSourceIndex) const {
    if (!selectedRange) {
        return std::nullopt;
    }
    const std::optional<TextRange> selection = TextTarget::validRange(*selectedRange, text);
    const std::optional<TextRange> target = TextTarget::range(text, *selectedRange);
    if (!selection || !target) {
        return std::nullopt;
    }
    const std::u16string_view segment = target->in(text);
    std::optional<StringConversion> conversion = convertString(segment, activeSourceIndex);
    if (!conversion) {
        return std::nullopt;
    }

    FieldConversion result;
    result.targetIndex = conversion->targetIndex;
    result.replacementRange = target->utf16Range();
    result.replacement = std::move(conversion->converted);
    result.text.reserve(text.size() - segment.size() + result.replacement.size());
    result.text.append(text.substr(0, target->begin));
    result.text.append(result.replacement);
    result.text.append(text.substr(target->end));

    const std::int64_t start = result.replacementRange.location;
    const std::int64_t convertedLength = asCount(result.replacement.size());
    Utf16Range after;
    if (!selection->isEmpty()) {
        after = {start, convertedLength};
    } else if (selection->begin >= target->end) {
        after = {selectedRange->location + convertedLength - result.replacementRange.length, 0};
    } else {
        const std::u16string_view before = segment.substr(0, selection->begin - target->begin);
        const int sourceIndex = 1 - result.targetIndex;
        after = {start + translate(segment, sourceIndex, asCount(characterCount(before))).caret, 0};
    }
    // What was replaced may join what stands beside it now.
    if (!TextTarget::validRange(after, result.text)) {
        return std::nullopt;
    }
    result.selectedRange = after;
    return result;
}

} // namespace kelvora
