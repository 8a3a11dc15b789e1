// SPDX-License-Identifier: MIT
#include "core/text/code_unit_traits.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <cassert>

namespace kelvora {
namespace {

bool isStandaloneScalar(const UNormalizer2* nfc, UChar32 scalar) {
    const int cluster = u_getIntPropertyValue(scalar, UCHAR_GRAPHEME_CLUSTER_BREAK);
    // CR joins a following LF; the other controls end a cluster on both sides.
    const bool endsAtNeighbours =
        cluster == U_GCB_OTHER || cluster == U_GCB_CONTROL || cluster == U_GCB_LF;
    return endsAtNeighbours && u_getIntPropertyValue(scalar, UCHAR_NFC_QUICK_CHECK) == UNORM_YES &&
           unorm2_hasBoundaryBefore(nfc, scalar) != 0;
}

unsigned bit(CodeUnitTrait trait, bool present) {
    return present ? static_cast<unsigned>(trait) : 0;
}

} // namespace

CodeUnitTraits::CodeUnitTraits() : bits_{} {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* nfc = unorm2_getNFCInstance(&error);
    assert(U_SUCCESS(error));
    for (std::size_t unit = 0; unit < bits_.size(); ++unit) {
        const auto scalar = static_cast<UChar32>(unit);
        if (unit >= 0xD800 && unit <= 0xDFFF) {
            continue;
        }
        const auto category = u_charType(scalar);
        const unsigned bits =
            bit(CodeUnitTrait::standalone, isStandaloneScalar(nfc, scalar)) |
            bit(CodeUnitTrait::letter, u_hasBinaryProperty(scalar, UCHAR_ALPHABETIC) != 0) |
            bit(CodeUnitTrait::number,
                u_getIntPropertyValue(scalar, UCHAR_NUMERIC_TYPE) != U_NT_NONE) |
            bit(CodeUnitTrait::whitespace, u_hasBinaryProperty(scalar, UCHAR_WHITE_SPACE) != 0) |
            bit(CodeUnitTrait::control, category == U_CONTROL_CHAR || category == U_FORMAT_CHAR);
        bits_[unit] = static_cast<std::uint8_t>(bits);
    }
}

const CodeUnitTraits& CodeUnitTraits::table() {
    static const CodeUnitTraits traits;
    return traits;
}

bool CodeUnitTraits::isStandalone(std::u16string_view text) const {
    return std::all_of(text.begin(), text.end(),
                       [this](char16_t unit) { return isStandalone(unit); });
}

} // namespace kelvora
