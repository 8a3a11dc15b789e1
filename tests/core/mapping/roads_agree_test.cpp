// SPDX-License-Identifier: MIT
// Holds the quick roads through text against the plain one: everything segmented and normalised by
// ICU as a whole, and looked up in ordinary maps.
#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "core/mapping/physical_layout_mapping.h"
#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

icu::UnicodeString toIcu(std::u16string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

std::u16string plainNfc(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    const auto result = icu::Normalizer2::getNFCInstance(error)->normalize(toIcu(text), error);
    EXPECT_TRUE(U_SUCCESS(error));
    return {result.getBuffer(), static_cast<std::size_t>(result.length())};
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

struct PlainMapping {
    std::map<std::u16string, std::u16string> maps[2];
    std::set<std::u16string> alphabets[2];
    std::size_t maximumTokenLength = 1;

    explicit PlainMapping(const std::vector<PhysicalKeyPair>& pairs) {
        for (const PhysicalKeyPair& pair : pairs) {
            const std::u16string sides[2] = {pair.first, pair.second};
            bool hasNumber = false;
            for (std::size_t side = 0; side < 2; ++side) {
                for (const std::u16string& character : plainCharacters(sides[side])) {
                    if (pair.isPrimary && isLetter(character)) {
                        alphabets[side].insert(plainNfc(character));
                    }
                    hasNumber = hasNumber || isNumber(character);
                }
            }
            if (pair.first.empty() || pair.second.empty()) {
                continue;
            }
            for (std::size_t side = 0; side < 2; ++side) {
                maps[side].emplace(sides[side], sides[hasNumber ? side : 1 - side]);
                maximumTokenLength =
                    std::max(maximumTokenLength, plainCharacters(sides[side]).size());
            }
        }
    }

    Translation translate(std::u16string_view text, std::size_t source, std::size_t caret) const {
        const auto characters = plainCharacters(text);
        std::u16string result;
        std::optional<std::size_t> converted;
        for (std::size_t i = 0; i < characters.size();) {
            std::u16string output = characters[i];
            std::size_t length = 1;
            for (std::size_t tried = std::min(maximumTokenLength, characters.size() - i); tried > 0;
                 --tried) {
                std::u16string candidate;
                for (std::size_t j = i; j < i + tried; ++j) {
                    candidate += characters[j];
                }
                const auto found = maps[source].find(plainNfc(candidate));
                if (found != maps[source].end()) {
                    output = found->second == found->first ? candidate : found->second;
                    length = tried;
                    break;
                }
            }
            if (!converted && i + length >= caret) {
                converted = result.size();
                const auto outputs = plainCharacters(output);
                for (std::size_t j = 0; i + j < caret && j < outputs.size(); ++j) {
                    *converted += outputs[j].size();
                }
            }
            result += output;
            i += length;
        }
        const auto place = static_cast<std::int64_t>(converted.value_or(result.size()));
        return {std::move(result), place};
    }

    int lead(std::u16string_view text) const {
        int lead = 0;
        for (const std::u16string& character : plainCharacters(text)) {
            lead += static_cast<int>(alphabets[0].count(plainNfc(character))) -
                    static_cast<int>(alphabets[1].count(plainNfc(character)));
        }
        return lead;
    }
};

// Everything that joins, composes, reorders, decomposes or breaks, among plain letters.
const std::u16string pieces[] = {
    u"a",
    u"b",
    u"k",
    u"e",
    u"й",
    u"и",
    u"ж",
    u"7",
    u" ",
    u".",
    u";",
    u"<",
    u"\n",
    u"\r",
    u"\r\n",
    u"\u0301",
    u"\u0306",
    u"\u0308",
    u"\u0323",
    u"\u0331",
    u"\u0338",
    u"\u0345",
    u"\u200D",
    u"\u200C",
    u"\uFE0F",
    u"\u20E3",
    u"\u037E",
    u"\u212A",
    u"\u212B",
    u"\u00E9",
    u"\u1100",
    u"\u1161",
    u"\u11A8",
    u"\uAC00",
    u"\uAC01",
    u"\u0915",
    u"\u094D",
    u"\u093C",
    u"\u0958",
    u"\u09C7",
    u"\u09BE",
    u"\u0E33",
    u"\u0600",
    u"\u0D4E",
    u"\u3042",
    u"\u3099",
    u"\u304B",
    u"\u4E00",
    u"\uF900",
    u"\uFB01",
    u"\uFEFB",
    u"\u0644",
    u"\u0627",
    u"\u0653",
    u"\U0001F468",
    u"\u2764",
    u"\U0001F3FD",
    u"\U0001F1F7",
    u"\U0001F1FA",
    u"\U0001D15E",
    u"\U00011131",
    u"\U00011127",
    u"\U000E0041",
    u"\u2028",
    u"\u0085",
    u"\uFFFD",
    std::u16string(1, 0xD83D),
    std::u16string(1, 0xDE00),
};

class Source {
public:
    explicit Source(std::uint32_t seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return random_() % limit; }

    /// Nasty pieces, or mostly plain letters with a nasty piece here and there.
    std::u16string text(std::size_t length) {
        const bool isPlain = below(2) == 0;
        std::u16string result;
        for (std::size_t i = 0; i < length; ++i) {
            const bool takesAny = !isPlain || below(40) == 0;
            result += pieces[below(takesAny ? std::size(pieces) : 12)];
        }
        return result;
    }

    std::vector<PhysicalKeyPair> pairs() {
        std::vector<PhysicalKeyPair> result;
        for (std::size_t count = below(40); count > 0; --count) {
            const std::size_t longest = below(6) == 0 ? 4 : 2;
            const std::u16string first = text(below(longest));
            result.emplace_back(first, text(below(longest)), below(3) != 0);
        }
        return result;
    }

private:
    std::mt19937 random_;
};

TEST(RoadsAgree, onCharactersAndNormalisation) {
    Source source(20260101);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string text = source.text(source.below(12));
        SCOPED_TRACE(testing::PrintToString(text));
        std::vector<std::u16string> characters;
        for (const std::u16string_view character : Characters(text)) {
            characters.emplace_back(character);
        }
        ASSERT_EQ(characters, plainCharacters(text));
        ASSERT_EQ(toNfc(text), plainNfc(text));

        std::u16string other = source.text(source.below(3));
        other = source.below(2) == 0 ? plainNfc(text) : text.substr(0, text.size() / 2) + other;
        ASSERT_EQ(canonicallyEqual(text, other), plainNfc(text) == plainNfc(other));
    }
}

TEST(RoadsAgree, onEveryCodeUnitBetweenOthers) {
    // Each unit beside each kind of neighbour: a mark, letters, joining and composing ones.
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        for (const std::u16string_view neighbour : {u"\u0301", u"e", u"\u1161", u"\u09BE", u"\n"}) {
            std::u16string text(neighbour);
            text.push_back(static_cast<char16_t>(unit));
            text += neighbour;
            std::vector<std::u16string> characters;
            for (const std::u16string_view character : Characters(text)) {
                characters.emplace_back(character);
            }
            ASSERT_EQ(characters, plainCharacters(text)) << std::hex << unit;
            ASSERT_EQ(toNfc(text), plainNfc(text)) << std::hex << unit;
        }
    }
}

TEST(RoadsAgree, onTranslationAndDirection) {
    Source source(7);
    for (int round = 0; round < 3000; ++round) {
        const auto pairs = source.pairs();
        const PhysicalLayoutMapping mapping(pairs);
        const PlainMapping plain(pairs);
        ASSERT_EQ(mapping.maximumTokenLength(), static_cast<int>(plain.maximumTokenLength));
        const std::u16string text = source.text(source.below(round % 4 == 0 ? 400 : 12));
        SCOPED_TRACE(testing::PrintToString(text));
        for (const int from : {0, 1}) {
            const std::size_t caret = source.below(text.size() + 2);
            ASSERT_EQ(mapping.translate(text, from, static_cast<std::int64_t>(caret)),
                      plain.translate(text, static_cast<std::size_t>(from), caret));
        }
        const int lead = plain.lead(text);
        if (lead != 0) {
            ASSERT_EQ(mapping.direction(text, {}), lead > 0 ? 0 : 1);
            ASSERT_EQ(mapping.direction(text, 0), lead > 0 ? 0 : 1);
        } else {
            const bool changes = plainNfc(plain.translate(text, 1, 0).text) != plainNfc(text);
            ASSERT_EQ(mapping.direction(text, 1), changes ? std::optional(1) : std::nullopt);
        }
    }
}

} // namespace
} // namespace kelvora
