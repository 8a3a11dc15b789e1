// SPDX-License-Identifier: MIT
// Characters, normalisation, encodings and classes of any UTF-16, against ICU without short cuts.
#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/encoding.h"
#include "core/text/normalization.h"
#include "fuzz/input.h"
#include "fuzz/plain_text.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>

namespace kelvora::fuzz {
namespace {

void checkCharacters(std::u16string_view text) {
    const std::vector<std::size_t> boundaries = plainBoundaries(text);
    CharacterSegmenter segmenter(text);
    for (std::size_t i = 1; i < boundaries.size(); ++i) {
        require(segmenter.next(boundaries[i - 1]) == boundaries[i], "the next boundary is ICU's");
        require(segmenter.previous(boundaries[i]) == boundaries[i - 1],
                "backwards the boundaries are the same");
    }
    for (std::size_t offset = 0; offset <= text.size() + 1; ++offset) {
        const bool isExpected = std::ranges::binary_search(boundaries, offset);
        require(segmenter.isBoundary(offset) == isExpected, "isBoundary agrees with the walk");
        require(CharacterSegmenter(text).isBoundary(offset) == isExpected,
                "isBoundary does not depend on what was asked before");
    }
    std::size_t count = 0;
    std::u16string joined;
    for (const std::u16string_view character : Characters(text)) {
        require(!character.empty(), "no character is empty");
        joined += character;
        ++count;
    }
    require(joined == text, "the characters are the whole text");
    require(count + 1 == boundaries.size() && characterCount(text) == count,
            "characters are counted as they are listed");
}

void checkNormalization(std::u16string_view text, std::u16string_view other) {
    const std::u16string nfc = plainNfc(text);
    require(toNfc(text) == nfc, "NFC is ICU's");
    require(toNfc(nfc) == nfc, "NFC of NFC is itself");
    require(canonicallyEqual(text, nfc) && canonicallyEqual(plainNfd(text), text),
            "a text equals its normal forms");
    const bool areEqual = nfc == plainNfc(other);
    require(canonicallyEqual(text, other) == areEqual && canonicallyEqual(other, text) == areEqual,
            "canonical equality is equality of NFC");

    const std::u16string part = plainNfc(other);
    const std::vector<std::size_t> boundaries = plainBoundaries(nfc);
    const bool isInside = std::ranges::any_of(boundaries, [&](std::size_t begin) {
        return std::u16string_view(nfc).substr(begin, part.size()) == part &&
               std::ranges::binary_search(boundaries, begin + part.size());
    });
    require(containsText(text, other) == isInside, "a part is found as whole characters only");
}

bool isWellFormed(std::u16string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        if (scalar.value >= 0xD800 && scalar.value <= 0xDFFF)
            return false;
        offset += scalar.length;
    }
    return true;
}

void checkEncoding(std::u16string_view text) {
    const std::u16string wellFormed = toWellFormed(text);
    require(isWellFormed(wellFormed), "toWellFormed leaves no lone surrogate");
    require(wellFormed.size() == text.size(), "toWellFormed replaces unit by unit");
    require(isWellFormed(text) ? wellFormed == text : wellFormed != text,
            "toWellFormed changes what is malformed and nothing else");
    const std::string utf8 = toUtf8(text);
    require(utf8 == toUtf8(wellFormed), "UTF-8 has no surrogates");
    require(toUtf16(utf8) == wellFormed, "UTF-16 to UTF-8 and back");
}

void checkDecoding(std::string_view bytes) {
    const std::u16string text = toUtf16(bytes);
    require(isWellFormed(text), "no bytes give a lone surrogate");
    std::u16string expected(bytes.size() + 1, u'\0');
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(expected.data(), static_cast<std::int32_t>(expected.size()), &length,
                         bytes.data(), static_cast<std::int32_t>(bytes.size()), 0xFFFD, nullptr,
                         &error);
    require(U_SUCCESS(error), "ICU takes any bytes");
    expected.resize(static_cast<std::size_t>(length));
    require(text == expected, "malformed UTF-8 is replaced as ICU replaces it");
    require(toUtf16(toUtf8(text)) == text, "UTF-8 to UTF-16 and back");
}

void checkClasses(std::u16string_view text) {
    bool hasControl = false;
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        const std::u16string_view character = text.substr(offset, scalar.length);
        const auto point = static_cast<UChar32>(scalar.value);
        require(isLetter(character) == (u_hasBinaryProperty(point, UCHAR_ALPHABETIC) != 0),
                "letters are ICU's");
        require(isNumber(character) ==
                    (u_getIntPropertyValue(point, UCHAR_NUMERIC_TYPE) != U_NT_NONE),
                "numbers are ICU's");
        require(isWhitespace(character) == (u_isUWhiteSpace(point) != 0), "white space is ICU's");
        require(!isLineBreak(character) || isWhitespace(character), "line breaks are white space");
        const auto category = u_charType(point);
        require(isControl(scalar.value) ==
                    (category == U_CONTROL_CHAR || category == U_FORMAT_CHAR),
                "controls are ICU's");
        hasControl = hasControl || isControl(scalar.value);
        offset += scalar.length;
    }
    require(containsControl(text) == hasControl, "a control anywhere is found");

    const std::u16string_view inner = trimmed(text);
    const std::size_t begin =
        inner.empty() ? 0 : static_cast<std::size_t>(inner.data() - text.data());
    const auto isBlank = [](std::u16string_view part) {
        return std::ranges::all_of(part, [](char16_t unit) { return u_isUWhiteSpace(unit) != 0; });
    };
    require(inner.empty()
                ? isBlank(text)
                : isBlank(text.substr(0, begin)) && isBlank(text.substr(begin + inner.size())) &&
                      !isBlank(inner.substr(0, 1)) && !isBlank(inner.substr(inner.size() - 1)),
            "what is trimmed is blank, and what is left begins and ends otherwise");
}

} // namespace
} // namespace kelvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora::fuzz;
    Input input(data, size);
    checkDecoding(input.rest());
    const std::u16string text = takeText(input);
    const std::u16string other = takeText(input);
    checkCharacters(text);
    checkEncoding(text);
    checkClasses(text);
    checkNormalization(text, other);
    // Parts and near relatives of a text, which a second text hardly ever is by chance.
    const std::u16string_view half = std::u16string_view(text).substr(text.size() / 2);
    checkNormalization(text, half);
    checkNormalization(text, plainNfd(half));
    return 0;
}
