// SPDX-License-Identifier: MIT
// Holds the quick roads through text against the plain ones: everything segmented and normalised by
// ICU as a whole, and translated character by character.
#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/mapping/physical_layout_mapping.h"
#include "core/text/characters.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

icu::UnicodeString toIcu(std::u16string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

std::u16string fromIcu(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

std::u16string plainNfc(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    return fromIcu(icu::Normalizer2::getNFCInstance(error)->normalize(toIcu(text), error));
}

std::vector<std::u16string> plainCharacters(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    const icu::UnicodeString shown = toIcu(text);
    iterator->setText(shown);
    std::vector<std::u16string> characters;
    std::size_t begin = 0;
    iterator->first();
    for (std::int32_t end = iterator->next(); end != icu::BreakIterator::DONE;
         end = iterator->next()) {
        characters.emplace_back(text.substr(begin, static_cast<std::size_t>(end) - begin));
        begin = static_cast<std::size_t>(end);
    }
    return characters;
}

// Everything that joins, composes, reorders, decomposes or breaks, among plain letters.
constexpr std::size_t plainCount = 12;
const std::u32string pieces =
    U"abkeйиж7 .;<\n\r\u0301\u0306\u0308\u0323\u0331\u0338\u0345\u200D\u200C\uFE0F\u20E3"
    U"\u037E\u212A\u212B\u00E9\u1100\u1161\u11A8\uAC00\uAC01\u0915\u094D\u093C\u0958\u09C7"
    U"\u09BE\u0E33\u0600\u0D4E\u3042\u3099\u304B\u4E00\uF900\uFB01\uFEFB\u0644\u0627\u0653"
    U"\U0001F468\u2764\U0001F3FD\U0001F1F7\U0001F1FA\U0001D15E\U00011131\U00011127\U000E0041"
    U"\u2028\u0085\uFFFD";

struct Source {
    std::mt19937 random;

    std::size_t below(std::size_t limit) { return random() % limit; }

    /// Nasty pieces, or mostly plain letters with a nasty piece here and there.
    std::u16string text(std::size_t length) {
        const bool isPlain = below(2) == 0;
        std::u16string result;
        for (std::size_t i = 0; i < length; ++i) {
            const bool takesAny = !isPlain || below(40) == 0;
            const std::size_t piece = below(takesAny ? pieces.size() + 2 : plainCount);
            if (piece < pieces.size())
                result += fromIcu(static_cast<UChar32>(pieces[piece]));
            else
                result.push_back(piece == pieces.size() ? 0xD83D : 0xDE00);
        }
        return result;
    }
};

void expectAgreement(std::u16string_view text) {
    ASSERT_EQ(toNfc(text), plainNfc(text));
    CharacterSegmenter segmenter(text);
    std::vector<std::u16string> characters;
    std::size_t boundary = 0;
    for (const std::u16string_view character : Characters(text)) {
        characters.emplace_back(character);
        for (std::size_t unit = 0; unit < character.size(); ++unit)
            ASSERT_EQ(segmenter.isBoundary(boundary + unit), unit == 0);
        ASSERT_EQ(segmenter.previous(boundary + character.size()), boundary);
        boundary += character.size();
    }
    ASSERT_EQ(characters, plainCharacters(text));
    ASSERT_EQ(characterCount(text), characters.size());
}

TEST(RoadsAgree, onCharactersAndNormalisation) {
    Source source{std::mt19937(20260101)};
    for (int round = 0; round < 20000; ++round) {
        const std::u16string text = source.text(source.below(12));
        SCOPED_TRACE(testing::PrintToString(text));
        ASSERT_NO_FATAL_FAILURE(expectAgreement(text));

        std::u16string other = source.text(source.below(3));
        other = source.below(2) == 0 ? plainNfc(text) : text.substr(0, text.size() / 2) + other;
        ASSERT_EQ(canonicallyEqual(text, other), plainNfc(text) == plainNfc(other));
    }
}

TEST(RoadsAgree, onEveryCodeUnitBetweenOthers) {
    // Each unit beside each kind of neighbour: a mark, letters, joining and composing ones.
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        for (const char16_t neighbour : std::u16string_view(u"\u0301e\u1161\u09BE\n")) {
            const std::u16string text = {neighbour, static_cast<char16_t>(unit), neighbour};
            ASSERT_NO_FATAL_FAILURE(expectAgreement(text)) << std::hex << unit;
        }
    }
}

TEST(RoadsAgree, onATextAndItsCharacters) {
    Source source{std::mt19937(7)};
    for (int round = 0; round < 3000; ++round) {
        std::vector<PhysicalKeyPair> pairs;
        for (std::size_t count = source.below(40); count > 0; --count)
            pairs.emplace_back(source.text(1), source.text(1));
        const PhysicalLayoutMapping mapping(pairs);
        ASSERT_EQ(mapping.maximumTokenLength(), 1);
        const std::u16string text = source.text(source.below(round % 4 == 0 ? 400 : 12));
        SCOPED_TRACE(testing::PrintToString(text));
        for (const int from : {0, 1}) {
            const std::size_t caret = source.below(text.size() + 2);
            std::size_t index = 0;
            std::size_t expectedCaret = 0;
            std::u16string expected;
            for (const std::u16string_view character : Characters(text)) {
                expected += mapping.convert(character, from);
                expectedCaret = index++ < caret ? expected.size() : expectedCaret;
            }
            ASSERT_EQ(mapping.translate(text, from, static_cast<std::int64_t>(caret)),
                      (Translation{expected, static_cast<std::int64_t>(expectedCaret)}));
        }
    }
}

} // namespace
} // namespace kelvora
