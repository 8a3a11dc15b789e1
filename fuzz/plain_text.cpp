// SPDX-License-Identifier: MIT
#include "fuzz/plain_text.h"

#include <unicode/ubrk.h>
#include <unicode/unorm2.h>

#include <array>
#include <cstdint>

namespace kelvora::fuzz {
namespace {

using namespace std::string_view_literals;

// Half of an emoji is a text of its own here, so that halves meet, alone and with others.
constexpr auto pieces = std::to_array<std::u16string_view>({
    u"\u0301",     u"\u0306",     u"\u0308",     u"\u0323",     u"\u0331",     u"\u0338",
    u"\u0345",     u"\u0327",     u"\u3099",     u"\u20E3",     u"\uFE0F",     u"\u200D",
    u"\u200C",     u"\u00AD",     u"\u2060",     u"\uFEFF",     u"\u0085",     u"\u00A0",
    u"\u2003",     u"\u2028",     u"\u2029",     u"\u3000",     u"\uFFFD",     u"\uFFFF",
    u"\xD83D"sv,   u"\xDE00"sv,   u"\xD800"sv,   u"\xDFFF"sv,   u"\U0001F468", u"\U0001F469",
    u"\U0001F3FD", u"\U0001F1F7", u"\U0001F1FA", u"\u2764",     u"\u2602",     u"\U0001D15E",
    u"\U0001D400", u"\U0001D7D8", u"\U00011131", u"\U00011127", u"\U000E0041", u"\U000E007F",
    u"\u1100",     u"\u1161",     u"\u11A8",     u"\uAC00",     u"\uAC01",     u"\u0915",
    u"\u094D",     u"\u093C",     u"\u0958",     u"\u09C7",     u"\u09BE",     u"\u0E33",
    u"\u0600",     u"\u0D4E",     u"\u0644",     u"\u0627",     u"\u0653",     u"\uFEFB",
    u"\u304B",     u"\u4E00",     u"\uF900",     u"\uFB01",     u"\u212A",     u"\u212B",
    u"\u037E",     u"\u1FEF",     u"\u00E9",     u"\u00C5",     u"\u00DF",     u"\u0130",
    u"\u00BD",     u"\u0663",     u"\u2167",     u"\u4E94",     u"\uF700",     u"\uF8FF",
    u"\u0430",     u"\u0431",     u"\u0432",     u"\u0433",     u"\u0434",     u"\u0435",
    u"\u0436",     u"\u0437",     u"\u0438",     u"\u0439",     u"\u043A",     u"\u043B",
    u"\u043C",     u"\u043D",     u"\u043E",     u"\u043F",     u"\u0440",     u"\u0441",
    u"\u0442",     u"\u0443",     u"\u0444",     u"\u0445",     u"\u0446",     u"\u0447",
    u"\u0448",     u"\u0449",     u"\u044A",     u"\u044B",     u"\u044C",     u"\u044D",
    u"\u044E",     u"\u044F",     u"\u0451",     u"\u0401",     u"\u0419",     u"\u0426",
    u"\u0423",     u"\u041A",     u"\u0415",     u"\u041D",     u"\u0404",     u"\u0406",
    u"\u0531",     u"\u05D0",     u"\u03B1",     u"\u03AC",     u"\u0E01",     u"\u10D0",
    u"\u1E69",
});
static_assert(pieces.size() == 127);
constexpr std::uint8_t firstPiece = 0x80;
constexpr std::uint8_t anyUnit = 0xFF;

std::u16string normalized(const UNormalizer2* normalizer, std::u16string_view text) {
    std::u16string result(text.size() * 4 + 1, u'\0');
    for (int tries = 0; tries < 2; ++tries) {
        UErrorCode error = U_ZERO_ERROR;
        const std::int32_t length =
            unorm2_normalize(normalizer, text.data(), static_cast<std::int32_t>(text.size()),
                             result.data(), static_cast<std::int32_t>(result.size()), &error);
        result.resize(static_cast<std::size_t>(length));
        if (U_SUCCESS(error))
            return result;
    }
    return result;
}

} // namespace

std::u16string takeText(Input& input, std::size_t maximumUnits) {
    std::u16string text;
    while (!input.isEmpty() && text.size() < maximumUnits) {
        const std::uint8_t byte = input.byte();
        if (byte == 0)
            break;
        if (byte == anyUnit)
            text.push_back(input.number<std::uint16_t>());
        else if (byte >= firstPiece)
            text.append(pieces[byte - firstPiece]);
        else
            text.push_back(byte);
    }
    return text;
}

std::vector<std::size_t> plainBoundaries(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    static UBreakIterator* const iterator = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error);
    ubrk_setText(iterator, text.data(), static_cast<std::int32_t>(text.size()), &error);
    require(U_SUCCESS(error), "ICU takes any text");
    std::vector<std::size_t> boundaries;
    for (std::int32_t at = ubrk_first(iterator); at != UBRK_DONE; at = ubrk_next(iterator))
        boundaries.push_back(static_cast<std::size_t>(at));
    return boundaries;
}

std::vector<std::u16string_view> plainCharacters(std::u16string_view text) {
    const std::vector<std::size_t> boundaries = plainBoundaries(text);
    std::vector<std::u16string_view> characters;
    for (std::size_t i = 1; i < boundaries.size(); ++i)
        characters.push_back(text.substr(boundaries[i - 1], boundaries[i] - boundaries[i - 1]));
    return characters;
}

std::u16string plainNfc(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    return normalized(unorm2_getNFCInstance(&error), text);
}

std::u16string plainNfd(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    return normalized(unorm2_getNFDInstance(&error), text);
}

} // namespace kelvora::fuzz
