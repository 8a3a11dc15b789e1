// SPDX-License-Identifier: MIT
#include "core/text/character_class.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <cstddef>

#include "core/text/code_unit_traits.h"
#include "core/text/encoding.h"

namespace kelvora {
namespace {

UChar32 firstScalar(std::u16string_view character) {
    return static_cast<UChar32>(decodeScalar(character, 0).value);
}

bool firstHas(std::u16string_view character, CodeUnitTrait trait) {
    return CodeUnitTraits::table().has(character.front(), trait);
}

bool isSupplementary(UChar32 scalar) {
    return scalar > 0xFFFF;
}

bool isTrimmable(char16_t unit) {
    // Every scalar of these categories is in the Basic Multilingual Plane.
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x85 || (U_GET_GC_MASK(unit) & U_GC_Z_MASK);
}

} // namespace

bool isLetter(std::u16string_view character) {
    if (character.empty()) {
        return false;
    }
    const UChar32 scalar = firstScalar(character);
    return isSupplementary(scalar) ? u_hasBinaryProperty(scalar, UCHAR_ALPHABETIC) != 0
                                   : firstHas(character, CodeUnitTrait::letter);
}

bool isNumber(std::u16string_view character) {
    if (character.empty()) {
        return false;
    }
    const UChar32 scalar = firstScalar(character);
    return isSupplementary(scalar) ? u_getIntPropertyValue(scalar, UCHAR_NUMERIC_TYPE) != U_NT_NONE
                                   : firstHas(character, CodeUnitTrait::number);
}

bool isWhitespace(std::u16string_view character) {
    // No white space lies beyond the Basic Multilingual Plane.
    return !character.empty() && firstHas(character, CodeUnitTrait::whitespace);
}

bool isErasedAtOnce(std::u16string_view character) {
    if (character.empty() || decodeScalar(character, 0).length == character.size()) {
        return true;
    }
    UErrorCode error = U_ZERO_ERROR;
    switch (uscript_getScript(firstScalar(character), &error)) {
    case USCRIPT_LATIN:
    case USCRIPT_CYRILLIC:
    case USCRIPT_GREEK:
    case USCRIPT_HANGUL:
        return true;
    default:
        return false;
    }
}

bool isLineBreak(std::u16string_view character) {
    if (character.empty()) {
        return false;
    }
    const char16_t unit = character.front();
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

bool isControl(char32_t scalar) {
    if (scalar <= 0xFFFF) {
        return CodeUnitTraits::table().has(static_cast<char16_t>(scalar), CodeUnitTrait::control);
    }
    const auto category = u_charType(static_cast<UChar32>(scalar));
    return category == U_CONTROL_CHAR || category == U_FORMAT_CHAR;
}

bool containsControl(std::u16string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        if (isControl(scalar.value)) {
            return true;
        }
        offset += scalar.length;
    }
    return false;
}

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && isTrimmable(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isTrimmable(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace kelvora
