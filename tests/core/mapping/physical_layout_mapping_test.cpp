// SPDX-License-Identifier: MIT
#include "core/mapping/physical_layout_mapping.h"

#include "core/mapping/keyboard_mapping.h"
#include "core/text/encoding.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kelvora {
namespace {

using Pairs = std::vector<PhysicalKeyPair>;

/// The Latin and Russian rows as the keys of two layouts, with the digit row.
Pairs builtInPairs() {
    Pairs pairs;
    const auto addRow = [&](std::u16string_view first, std::u16string_view second) {
        for (std::size_t key = 0; key < first.size(); ++key)
            pairs.emplace_back(first.substr(key, 1), second.substr(key, 1));
    };
    addRow(KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian);
    addRow(u"1234567890", u"1234567890");
    addRow(KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian);
    return pairs;
}

const PhysicalLayoutMapping builtIn(builtInPairs());

TEST(PhysicalLayoutMapping, convertsByKey) {
    const Pairs letters = {{u"q", u"й"}, {u"Q", u"Й"}, {u"[", u"х"}};
    const Pairs numbers = {{u"1", u"&"}, {u"ab", u"x2"}, {u"\u4E00", u"y"}, {u"\u2116", u"#"}};
    const Pairs twice = {{u"a", u"б"}, {u"a", u"в", false}, {u"c", u"б"}};
    const std::u16string a(63, u'a'), b(63, u'б');
    const struct {
        const char* name;
        Pairs pairs;
        std::u16string text;
        int from;
        std::u16string converted;
    } cases[] = {
        {"first to second", letters, u"Q[ xyz\xD83D", 0, u"Йх xyz\xD83D"},
        {"any other index is the second", letters, u"йх", -3, u"q["},
        {"first pair of a text wins", twice, u"ac", 0, u"бб"},
        {"for each side by itself", twice, u"бв", 1, u"aa"},
        {"canonical twins are one key", {{u"\u212A", u"л"}, {u"K", u"ж"}}, u"K", 0, u"л"},
        {"twin in the text", {{u"K", u"л"}, {u";", u"ж"}}, u"\u212A\u037E", 0, u"лж"},
        {"numbers, and no number", numbers, u"1 ab \u4E00 \u2116", 0, u"1 ab \u4E00 #"},
        {"beside numbers", numbers, u"& x2 y #", 1, u"& x2 y \u2116"},
        {"an identity by number keeps its place", {{u"&", u"1"}, {u"&", u"x"}}, u"&", 0, u"&"},
        {"empty side", {{u"", u"б"}, {u"a", u""}}, u"aб", 1, u"aб"},
        {"longest first", {{u"a", u"х"}, {u"ab", u"ю"}}, u"aabab a", 0, u"хюю х"},
        {"several units for one", {{u"b", u"لا"}}, u"لالا", 1, u"bb"},
        {"identity keeps the form", {{u"\u00E9", u"e\u0301"}}, u"e\u0301", 0, u"e\u0301"},
        {"a marked letter is another character", letters, u"q\u0331q", 0, u"q\u0331й"},
        {"rare scripts", {{u"\uFEFB", u"x"}, {u"\U00010400", u"y"}}, u"\uFEFB\U00010400", 0, u"xy"},
        {"over a block's end", {{u"xy", u"ю"}, {u"a", u"б"}}, a + u"xy" + a, 0, b + u"ю" + b},
        {"CR LF is one character", {{u"\n", u"x"}, {u"\r", u"y"}}, u"\r\n\n\r", 0, u"\r\nxy"},
    };
    for (const auto& [name, pairs, text, from, converted] : cases)
        EXPECT_EQ(PhysicalLayoutMapping(pairs).convert(text, from), converted) << name;
}

TEST(PhysicalLayoutMapping, decidesByLettersOfOneLayout) {
    const Pairs oneSided = {{u"", u"ж"}, {u"s", u""}, {u"x", u"ы", false}, {u".", u","}};
    const Pairs shared = {{u"a", u"a"}, {u"b", u"c"}, {u"c", u"b"}, {u"\u00E9", u"d"}};
    const std::u16string blockThenMark =
        std::u16string(32, u'ж') + std::u16string(32, u'a') + u"\u0331";
    const struct {
        const char* name;
        Pairs pairs;
        std::u16string text;
        std::optional<int> active;
        std::optional<int> source;
    } cases[] = {
        {"repeats count", builtInPairs(), u"abжжж", {}, 1},
        {"tie, second active", builtInPairs(), u"aж", 1, 1},
        {"punctuation, second active", builtInPairs(), u".,", 1, 1},
        {"punctuation both would change", builtInPairs(), u".,", {}, {}},
        {"both would change, unknown index", builtInPairs(), u".,", 7, {}},
        {"only the first changes it", builtInPairs(), u"[", {}, 0},
        {"only the first changes it, second active", builtInPairs(), u"[", 1, {}},
        {"letter beside an empty side counts", oneSided, u"ж", {}, 1},
        {"not of a pair that is not primary", oneSided, u"ы.", 0, 0},
        {"shared letters never count", shared, u"abcbcb", 1, 1},
        {"a mark after a block's last letter", builtInPairs(), blockThenMark, {}, 1},
        {"rare letters", {{u"\U00010400", u"q\u0331"}}, u"\U00010400\U00010400q\u0331", 1, 0},
    };
    for (const auto& [name, pairs, text, active, source] : cases)
        EXPECT_EQ(PhysicalLayoutMapping(pairs).direction(text, active), source) << name;

    EXPECT_EQ(builtIn.convertString(u"Ghbdtn, vbh", {}), (StringConversion{u"Приветб мир", 1}));
    EXPECT_EQ(builtIn.convertString(u"2024", 0), std::nullopt);
    // Letters decide, but the text turns into its canonical twin only.
    const PhysicalLayoutMapping twin(Pairs{{u"x", u"x"}, {u"x\u0331", u"z", false}});
    EXPECT_EQ(twin.convertString(u"x", 0), std::nullopt);
}

TEST(PhysicalLayoutMapping, followsACaret) {
    const PhysicalLayoutMapping mapping(Pairs{
        {u"a", u"а"}, {u"b", u"\U0001F600"}, {u"c", u"e\u0331f"}, {u"xyz", u"э"}, {u"q", u"q"}});
    const struct {
        std::u16string text;
        std::optional<std::int64_t> caret;
        std::u16string converted;
        std::int64_t expected;
    } cases[] = {
        {u"", 0, u"", 0},
        {u"aba", 2, u"а\U0001F600а", 3},
        {u"aba", -1, u"а\U0001F600а", 0},
        {u"aba", {}, u"а\U0001F600а", 4},
        {u"aba", INT64_MAX, u"а\U0001F600а", 4},
        {u"aca", 2, u"аe\u0331fа", 3}, // one character of the output, two units
        {u"axyza", 2, u"аэа", 2},      // inside a token: after as many characters of its output
        {u"axyza", 4, u"аэа", 2},
        {u"\r\na", 2, u"\r\nа", 3},
    };
    for (const auto& [text, caret, converted, expected] : cases)
        EXPECT_EQ(mapping.translate(text, 0, caret), (Translation{converted, expected}))
            << toUtf8(text) << " at " << testing::PrintToString(caret);
}

TEST(ConvertField, convertsSelectionOrWord) {
    const PhysicalLayoutMapping longer(Pairs{{u"a", u"\U00010400"}, {u"b", u"cde"}});
    // The converted mark would join the letter before it, and the new selection would split both.
    const PhysicalLayoutMapping mark(Pairs{{u"k", u"\u0301"}});
    using Selection = std::optional<Utf16Range>;
    const std::u16string two = u"\U00010400\U00010400";
    const struct {
        const PhysicalLayoutMapping& mapping;
        std::u16string text;
        Selection selection;
        std::optional<FieldConversion> expected;
    } cases[] = {
        {builtIn, u"ghbdtn", {{3, 0}}, {{u"привет", {{3, 0}}, 1, {0, 6}, u"привет"}}},
        {builtIn, u"ghbdtn vbh", {{7, 0}}, {{u"привет vbh", {{7, 0}}, 1, {0, 6}, u"привет"}}},
        {builtIn, u"ghbdtn", {{0, 3}}, {{u"приdtn", {{0, 3}}, 1, {0, 3}, u"при"}}},
        {builtIn, u"a руддщ", {{7, 0}}, {{u"a hello", {{7, 0}}, 0, {2, 5}, u"hello"}}},
        {builtIn, u"😀 f,", {{5, 0}}, {{u"😀 аб", {{5, 0}}, 1, {3, 2}, u"аб"}}},
        {longer, u"xaa b", {{2, 0}}, {{u"x" + two + u" b", {{3, 0}}, 1, {0, 3}, u"x" + two}}},
        {longer, u"cdecdez", {{0, 6}}, {{u"bbz", {{0, 2}}, 0, {0, 6}, u"bb"}}},
        {builtIn, u"ghbdtn", {}, {}},
        {builtIn, u"qe\u0301q", {{2, 0}}, {}}, // inside a letter with its mark
        {builtIn, u"ghbdtn\n", {{7, 0}}, {}},
        {builtIn, u"2024", {{4, 0}}, {}},
        {builtIn, u"a,", {{1, 1}}, {}}, // undecided
        {mark, u"ek", {{1, 1}}, {}},
    };
    for (const auto& [mapping, text, selection, expected] : cases)
        EXPECT_EQ(mapping.convertField(text, selection, {}), expected) << toUtf8(text);
}

TEST(ConvertTypedWord, erasesAndTypesTheLastWord) {
    const std::u16string family = u"\U0001F468\u200D\U0001F469e\u0301 ";
    const struct {
        std::u16string text;
        std::optional<TypedWordConversion> expected;
    } cases[] = {
        {u"ok ghbdtn  ", {{8, u"привет  ", 1, u"ok привет  "}}},
        {u"ok\nруддщ", {{5, u"hello", 0, u"ok\nhello"}}},
        {u"gh" + family, {{5, u"пр" + family, 1, u"пр" + family}}},
        {u"   ", {}},
        {u"ghbdtn\n", {}},
        {u"ghbdtn 2024", {}},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(builtIn.convertTypedWord(text, {}), expected) << toUtf8(text);
}

} // namespace
} // namespace kelvora
