// SPDX-License-Identifier: MIT
#include "core/text/normalization.h"

#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "core/text/characters.h"
#include "core/text/code_unit_traits.h"

namespace kelvora {
namespace {

const UNormalizer2* nfcNormalizer() {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* nfc = unorm2_getNFCInstance(&error);
    assert(U_SUCCESS(error));
    return nfc;
}

void appendNormalized(std::u16string_view text, std::u16string& result) {
    std::array<char16_t, 64> small;
    const auto length = static_cast<std::int32_t>(text.size());
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t needed = unorm2_normalize(nfcNormalizer(), text.data(), length, small.data(),
                                                 static_cast<std::int32_t>(small.size()), &error);
    if (error != U_BUFFER_OVERFLOW_ERROR) {
        assert(U_SUCCESS(error));
        result.append(small.data(), static_cast<std::size_t>(needed));
        return;
    }
    const std::size_t start = result.size();
    result.resize(start + static_cast<std::size_t>(needed));
    error = U_ZERO_ERROR;
    unorm2_normalize(nfcNormalizer(), text.data(), length, result.data() + start, needed, &error);
    // The result has no place for a terminator, which is only a warning.
    assert(U_SUCCESS(error));
}

/// Offset of the next unit at or after `offset` that is not standalone, or the end.
std::size_t endOfStandalone(const CodeUnitTraits& traits, std::u16string_view text,
                            std::size_t offset) {
    while (offset < text.size() && traits.isStandalone(text[offset])) {
        ++offset;
    }
    return offset;
}

/// True when nothing before `offset` can change what normalisation makes of the unit there, and
/// nothing after it either.
bool standsAlone(const CodeUnitTraits& traits, std::u16string_view text, std::size_t offset) {
    return traits.isStandalone(text[offset]) &&
           (offset + 1 == text.size() || traits.isStandalone(text[offset + 1]));
}

} // namespace

std::u16string toNfc(std::u16string_view text) {
    constexpr std::size_t largestStretch = std::size_t{1} << 28; // ICU counts in 32 bits
    const CodeUnitTraits& traits = CodeUnitTraits::table();
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t plainEnd = endOfStandalone(traits, text, offset);
        if (plainEnd == text.size()) {
            result.append(text, offset);
            break;
        }
        // What follows may combine with the last plain unit, never with those before it.
        const std::size_t stretch = plainEnd > offset ? plainEnd - 1 : plainEnd;
        result.append(text, offset, stretch - offset);
        std::size_t end = plainEnd;
        while (end < text.size() && end - stretch < largestStretch &&
               !traits.isStandalone(text[end])) {
            ++end;
        }
        appendNormalized(text.substr(stretch, end - stretch), result);
        offset = end;
    }
    return result;
}

bool canonicallyEqual(std::u16string_view left, std::u16string_view right) {
    const CodeUnitTraits& traits = CodeUnitTraits::table();
    const auto [leftEnd, rightEnd] =
        std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    auto same = static_cast<std::size_t>(leftEnd - left.begin());
    const bool leftEnds = same == left.size();
    const bool rightEnds = same == right.size();
    if (leftEnds && rightEnds) {
        return true;
    }
    if ((leftEnds || standsAlone(traits, left, same)) &&
        (rightEnds || standsAlone(traits, right, same))) {
        return false;
    }
    while (same > 0 && (same >= left.size() || same >= right.size() || left[same] != right[same] ||
                        !traits.isStandalone(left[same]))) {
        --same;
    }
    return toNfc(left.substr(same)) == toNfc(right.substr(same));
}

bool containsText(std::u16string_view text, std::u16string_view part) {
    const std::u16string wholeText = toNfc(text);
    const std::u16string wholePart = toNfc(part);
    CharacterSegmenter segmenter(wholeText);
    for (std::size_t found = wholeText.find(wholePart); found != std::u16string::npos;
         found = wholeText.find(wholePart, found + 1)) {
        if (segmenter.isBoundary(found) && segmenter.isBoundary(found + wholePart.size())) {
            return true;
        }
    }
    return false;
}

} // namespace kelvora
