// SPDX-License-Identifier: MIT
#include "core/mapping/physical_layout_mapping.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/mapping/keyboard_mapping.h"
#include "core/text/encoding.h"

namespace kelvora {
namespace {

using Pairs = std::vector<PhysicalKeyPair>;

/// The Latin and Russian rows as the keys of two layouts, with the digit row.
Pairs builtInPairs() {
    Pairs pairs;
    const auto addRow = [&](std::u16string_view first, std::u16string_view second) {
        for (std::size_t key = 0; key < first.size(); ++key) {
            pairs.emplace_back(first.substr(key, 1), second.substr(key, 1));
        }
    };
    addRow(KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian);
    addRow(u"1234567890", u"1234567890");
    addRow(KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian);
    return pairs;
}

TEST(PhysicalLayoutMapping, convertsByKey) {
    const Pairs letters = {{u"q", u"й"}, {u"Q", u"Й"}, {u"[", u"х"}};
    const Pairs numbers = {{u"1", u"&"}, {u"ab", u"x2"}, {u"\u4E00", u"y"}, {u"\u2116", u"#"}};
    const Pairs twice = {{u"a", u"б"}, {u"a", u"в", false}, {u"c", u"б"}};
    struct Case {
        std::string name;
        Pairs pairs;
        std::u16string text;
        int from;
        std::u16string converted;
    };
    const std::vector<Case> cases = {
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
        {"decomposed й", letters, u"\u0438\u0306", 1, u"q"},
        {"identity keeps the form", {{u"\u00E9", u"e\u0301"}}, u"e\u0301", 0, u"e\u0301"},
        {"a marked letter is another character", letters, u"q\u0331q", 0, u"q\u0331й"},
        {"rare scripts", {{u"\uFEFB", u"x"}, {u"\U00010400", u"y"}}, u"\uFEFB\U00010400", 0, u"xy"},
        {"long key over a block's end",
         {{u"xy", u"ю"}, {u"a", u"б"}},
         std::u16string(63, u'a') + u"xy" + std::u16string(64, u'a'),
         0,
         std::u16string(63, u'б') + u"ю" + std::u16string(64, u'б')},
        {"CR LF is one character", {{u"\n", u"x"}, {u"\r", u"y"}}, u"\r\n\n\r", 0, u"\r\nxy"},
    };
    for (const Case& testCase : cases) {
        const PhysicalLayoutMapping mapping(testCase.pairs);
        EXPECT_EQ(mapping.convert(testCase.text, testCase.from), testCase.converted)
            << testCase.name;
    }
}

TEST(PhysicalLayoutMapping, longestTokenCountsCharacters) {
    EXPECT_EQ(PhysicalLayoutMapping(Pairs{{u"e\u0331", u"\U0001F600"}}).maximumTokenLength(), 1);
    EXPECT_EQ(PhysicalLayoutMapping(Pairs{{u"abc", u""}}).maximumTokenLength(), 1);
}

TEST(PhysicalLayoutMapping, decidesByLettersOfOneLayout) {
    const Pairs oneSided = {{u"", u"ж"}, {u"s", u""}, {u"x", u"ы", false}, {u".", u","}};
    const Pairs shared = {{u"a", u"a"}, {u"b", u"c"}, {u"c", u"b"}, {u"\u00E9", u"d"}};
    struct Case {
        std::string name;
        Pairs pairs;
        std::u16string text;
        std::optional<int> active;
        std::optional<int> source;
    };
    const std::vector<Case> cases = {
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
        {"a mark after a block's last letter",
         builtInPairs(),
         std::u16string(32, u'ж') + std::u16string(32, u'a') + u"\u0331",
         {},
         1},
        {"rare letters", {{u"\U00010400", u"q\u0331"}}, u"\U00010400\U00010400q\u0331", 1, 0},
    };
    for (const Case& testCase : cases) {
        const PhysicalLayoutMapping mapping(testCase.pairs);
        EXPECT_EQ(mapping.direction(testCase.text, testCase.active), testCase.source)
            << testCase.name;
    }
}

TEST(PhysicalLayoutMapping, convertsStringsIntoTheOtherLayout) {
    const PhysicalLayoutMapping mapping(builtInPairs());
    EXPECT_EQ(mapping.convertString(u"Ghbdtn, vbh", {}), (StringConversion{u"Приветб мир", 1}));
    EXPECT_EQ(mapping.convertString(u"2024", 0), std::nullopt);
    // Letters decide, but the text turns into its canonical twin only.
    const PhysicalLayoutMapping twin(Pairs{{u"x", u"x"}, {u"x\u0331", u"z", false}});
    EXPECT_EQ(twin.convertString(u"x", 0), std::nullopt);
}

TEST(PhysicalLayoutMapping, followsACaret) {
    const Pairs pairs = {
        {u"a", u"а"}, {u"b", u"\U0001F600"}, {u"c", u"e\u0331f"}, {u"xyz", u"э"}, {u"q", u"q"}};
    struct Case {
        std::u16string text;
        std::optional<std::int64_t> caret;
        std::u16string converted;
        std::int64_t expected;
    };
    const std::vector<Case> cases = {
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
    const PhysicalLayoutMapping mapping(pairs);
    for (const Case& testCase : cases) {
        EXPECT_EQ(mapping.translate(testCase.text, 0, testCase.caret),
                  (Translation{testCase.converted, testCase.expected}))
            << toUtf8(testCase.text) << " at " << testing::PrintToString(testCase.caret);
    }
}

TEST(ConvertField, convertsSelectionOrWord) {
    struct Case {
        std::u16string text;
        Utf16Range selection;
        FieldConversion expected;
    };
    const std::vector<Case> cases = {
        {u"ghbdtn", {3, 0}, {u"привет", Utf16Range{3, 0}, 1, {0, 6}, u"привет"}},
        {u"ghbdtn vbh", {7, 0}, {u"привет vbh", Utf16Range{7, 0}, 1, {0, 6}, u"привет"}},
        {u"ghbdtn", {0, 3}, {u"приdtn", Utf16Range{0, 3}, 1, {0, 3}, u"при"}},
        {u"a руддщ", {7, 0}, {u"a hello", Utf16Range{7, 0}, 0, {2, 5}, u"hello"}},
        {u"\U0001F600 f,", {5, 0}, {u"\U0001F600 аб", Utf16Range{5, 0}, 1, {3, 2}, u"аб"}},
    };
    const PhysicalLayoutMapping mapping(builtInPairs());
    for (const Case& testCase : cases) {
        EXPECT_EQ(mapping.convertField(testCase.text, testCase.selection, {}), testCase.expected)
            << toUtf8(testCase.text);
    }
}

TEST(ConvertField, movesTheCaretWithTheLength) {
    const PhysicalLayoutMapping mapping(Pairs{{u"a", u"\U00010400"}, {u"b", u"cde"}});
    EXPECT_EQ(
        mapping.convertField(u"xaa b", Utf16Range{2, 0}, {}),
        (FieldConversion{
            u"x\U00010400\U00010400 b", Utf16Range{3, 0}, 1, {0, 3}, u"x\U00010400\U00010400"}));
    EXPECT_EQ(mapping.convertField(u"cdecdez", Utf16Range{0, 6}, {}),
              (FieldConversion{u"bbz", Utf16Range{0, 2}, 0, {0, 6}, u"bb"}));
}

TEST(ConvertField, refuses) {
    const PhysicalLayoutMapping mapping(builtInPairs());
    struct Case {
        std::string name;
        std::u16string text;
        std::optional<Utf16Range> selection;
    };
    const std::vector<Case> cases = {
        {"no selection", u"ghbdtn", {}},
        {"inside a letter with its mark", u"qe\u0301q", Utf16Range{2, 0}},
        {"caret after a line feed", u"ghbdtn\n", Utf16Range{7, 0}},
        {"nothing changes", u"2024", Utf16Range{4, 0}},
        {"undecided", u"a,", Utf16Range{1, 1}},
    };
    for (const Case& testCase : cases) {
        EXPECT_FALSE(mapping.convertField(testCase.text, testCase.selection, {})) << testCase.name;
    }
    // The converted mark would join the letter before it, and the new selection would split both.
    EXPECT_FALSE(
        PhysicalLayoutMapping(Pairs{{u"k", u"\u0301"}}).convertField(u"ek", Utf16Range{1, 1}, {}));
}

TEST(ConvertTypedWord, erasesAndTypesTheLastWord) {
    struct Case {
        std::u16string text;
        std::optional<TypedWordConversion> expected;
    };
    const std::vector<Case> cases = {
        {u"ok ghbdtn  ", TypedWordConversion{8, u"привет  ", 1, u"ok привет  "}},
        {u"ok\nруддщ", TypedWordConversion{5, u"hello", 0, u"ok\nhello"}},
        {u"gh\U0001F468\u200D\U0001F469e\u0301 ",
         TypedWordConversion{5, u"пр\U0001F468\u200D\U0001F469e\u0301 ", 1,
                             u"пр\U0001F468\u200D\U0001F469e\u0301 "}},
        {u"   ", {}},
        {u"ghbdtn\n", {}},
        {u"ghbdtn 2024", {}},
    };
    const PhysicalLayoutMapping mapping(builtInPairs());
    for (const Case& testCase : cases) {
        EXPECT_EQ(mapping.convertTypedWord(testCase.text, {}), testCase.expected)
            << toUtf8(testCase.text);
    }
}

TEST(ConvertTypedWord, comparesTextsCanonically) {
    const TypedWordConversion conversion{1, u"\u00E9", 1, u"a\u00E9"};
    EXPECT_EQ(conversion, (TypedWordConversion{1, u"e\u0301", 1, u"ae\u0301"}));
    EXPECT_NE(conversion, (TypedWordConversion{1, u"e", 1, u"a\u00E9"}));
    EXPECT_NE(conversion, (TypedWordConversion{1, u"\u00E9", 1, u"ae"}));
}

} // namespace
} // namespace kelvora
