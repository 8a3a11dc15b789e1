// SPDX-License-Identifier: MIT
#include "host/linux/atspi/text_units.h"

#include "core/text/code_unit_traits.h"
#include "core/text/encoding.h"

namespace kelvora {
namespace {

std::int64_t codePointCount(std::u16string_view text) {
    std::int64_t count = 0;
    for (std::size_t offset = 0; offset < text.size(); ++count)
        offset += decodeScalar(text, offset).length;
    return count;
}

/// Two such neighbours have a boundary between them whatever is around them.
bool isCertainBoundary(std::u16string_view text, std::size_t offset) {
    const CodeUnitTraits& traits = CodeUnitTraits::table();
    return traits.isStandalone(text[offset - 1]) && traits.isStandalone(text[offset]);
}

} // namespace

std::int64_t lengthIn(OffsetUnit unit, std::u16string_view text) {
    switch (unit) {
    case OffsetUnit::codePoint:
        return codePointCount(text);
    case OffsetUnit::utf16:
        break;
    }
    return static_cast<std::int64_t>(text.size());
}

std::optional<OffsetUnit> unitOf(std::u16string_view text, std::int64_t length) {
    const auto units = static_cast<std::int64_t>(text.size());
    const std::int64_t points = codePointCount(text);
    if (units == points)
        return std::nullopt;
    if (length == units)
        return OffsetUnit::utf16;
    if (length == points)
        return OffsetUnit::codePoint;
    return std::nullopt;
}

bool canBeSent(std::u16string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        if (scalar.value == 0 || (scalar.value >= 0xD800 && scalar.value <= 0xDFFF))
            return false;
        offset += scalar.length;
    }
    return true;
}

std::size_t firstCertainBoundary(std::u16string_view text) {
    std::size_t offset = 1;
    while (offset < text.size() && !isCertainBoundary(text, offset))
        ++offset;
    return offset < text.size() ? offset : text.size();
}

std::size_t lastCertainBoundary(std::u16string_view text) {
    if (text.empty())
        return 0;
    std::size_t offset = text.size() - 1;
    while (offset > 0 && !isCertainBoundary(text, offset))
        --offset;
    return offset;
}

} // namespace kelvora
