// SPDX-License-Identifier: MIT
#include "core/mapping/physical_layout_mapping.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text/encoding.h"
#include "tests/core/mapping/built_in_layouts.h"

namespace kelvora {
namespace {

using Pairs = std::vector<PhysicalKeyPair>;

TEST(PhysicalLayoutMapping, convertsByKey) {
    const Pairs letters = {{u"q", u"й"}, {u"Q", u"Й"}, {u"[", u"х"}};
    const std::u16string loneSurrogate(1, 0xD83D);
    struct Case {
        std::string name;
        Pairs pairs;
        std::u16string text;
        int from;
        std::u16string converted;
    };
    const std::vector<Case> cases = {
        {"first to second", letters, u"q[", 0, u"йх"},
        {"second to first", letters, u"йх", 1, u"q["},
        {"any other index is the second", letters, u"йх", -3, u"q["},
        {"nothing known", letters, u"xyz 1", 0, u"xyz 1"},
        {"no pairs", {}, u"qй", 0, u"qй"},
        {"first pair of a text wins", {{u"a", u"б"}, {u"a", u"в", false}}, u"a", 0, u"б"},
        {"first pair wins for each side by itself",
         {{u"a", u"б"}, {u"a", u"в", false}, {u"c", u"б"}},
         u"бв",
         1,
         u"aa"},
        {"canonical twins are one key", {{u"\u212A", u"л"}, {u"K", u"ж"}}, u"K", 0, u"л"},
        {"twin in the text", {{u"K", u"л"}, {u";", u"ж"}}, u"\u212A\u037E", 0, u"лж"},
        {"number on one side", {{u"1", u"&"}}, u"1", 0, u"1"},
        {"number on the other side", {{u"1", u"&"}}, u"&", 1, u"&"},
        {"number among several characters", {{u"ab", u"x2"}}, u"ab", 0, u"ab"},
        {"an identity by number keeps its place", {{u"&", u"1"}, {u"&", u"x"}}, u"&", 0, u"&"},
        {"run of digits", {{u"2", u"!"}, {u"0", u"?"}, {u"4", u"+"}}, u"2024", 0, u"2024"},
        {"ideograph that is a number", {{u"\u4E00", u"x"}}, u"\u4E00", 0, u"\u4E00"},
        {"sign that is no number", {{u"\u2116", u"#"}}, u"\u2116", 0, u"#"},
        {"empty side", {{u"", u"б"}, {u"a", u""}}, u"aб", 1, u"aб"},
        {"longest first", {{u"a", u"1а"}, {u"a", u"х"}, {u"ab", u"ю"}}, u"abab a", 0, u"юю a"},
        {"long key after its start", {{u"a", u"х"}, {u"ab", u"ю"}}, u"aab", 0, u"хю"},
        {"long key before its start", {{u"ab", u"ю"}, {u"a", u"х"}}, u"aaba", 0, u"хюх"},
        {"long key over a block's end",
         {{u"xy", u"ю"}, {u"a", u"б"}},
         std::u16string(63, u'a') + u"xy" + std::u16string(64, u'a'),
         0,
         std::u16string(63, u'б') + u"ю" + std::u16string(64, u'б')},
        {"several units for one", {{u"b", u"لا"}}, u"abb", 0, u"aلالا"},
        {"and back", {{u"b", u"لا"}}, u"لالا", 1, u"bb"},
        {"decomposed text", {{u"\u00E9", u"щ"}}, u"e\u0301e", 0, u"щe"},
        {"decomposed key", {{u"e\u0301", u"щ"}}, u"\u00E9", 0, u"щ"},
        {"identity keeps the form",
         {{u"\u00E9", u"e\u0301"}},
         u"e\u0301\u00E9",
         0,
         u"e\u0301\u00E9"},
        {"a marked letter is another character", {{u"q", u"й"}}, u"q\u0331q", 0, u"q\u0331й"},
        {"mark after a block's last letter",
         {{u"q", u"й"}},
         std::u16string(64, u'q') + u"\u0331",
         0,
         std::u16string(63, u'й') + u"q\u0331"},
        {"key of letter and mark", {{u"q\u0331", u"й"}}, u"qq\u0331", 0, u"qй"},
        {"supplementary", {{u"\U00010400", u"x"}}, u"\U00010400", 0, u"x"},
        {"beyond the usual scripts",
         {{u"\uFEFB", u"x"}, {u"\uAC00", u"y"}},
         u"\uAC00\uFEFB",
         0,
         u"yx"},
        {"CR LF is one character", {{u"\n", u"x"}, {u"\r", u"y"}}, u"\r\n\n\r", 0, u"\r\nxy"},
        {"broken text", letters, loneSurrogate + u"q" + loneSurrogate, 0,
         loneSurrogate + u"й" + loneSurrogate},
    };
    for (const Case& testCase : cases) {
        const PhysicalLayoutMapping mapping(testCase.pairs);
        EXPECT_EQ(mapping.convert(testCase.text, testCase.from), testCase.converted)
            << testCase.name;
    }
}

TEST(PhysicalLayoutMapping, longestTokenCountsCharacters) {
    EXPECT_EQ(PhysicalLayoutMapping(Pairs{}).maximumTokenLength(), 1);
    EXPECT_EQ(PhysicalLayoutMapping(Pairs{{u"e\u0331", u"\U0001F600"}}).maximumTokenLength(), 1);
    EXPECT_EQ(PhysicalLayoutMapping(Pairs{{u"a", u"لا"}}).maximumTokenLength(), 2);
    EXPECT_EQ(PhysicalLayoutMapping(Pairs{{u"abc", u""}}).maximumTokenLength(), 1);
}

TEST(PhysicalLayoutMapping, decidesByLettersOfOneLayout) {
    const Pairs oneSided = {{u"", u"ж"}, {u"s", u""}, {u"x", u"ы", false}, {u".", u","}};
    const Pairs shared = {{u"a", u"a"}, {u"b", u"c"}, {u"c", u"b"}, {u"\u00E9", u"d"}};
    const Pairs rare = {{u"\U00010400", u"q\u0331"}, {u"\uFEFB", u"x"}};
    struct Case {
        std::string name;
        Pairs pairs;
        std::u16string text;
        std::optional<int> active;
        std::optional<int> source;
    };
    const std::vector<Case> cases = {
        {"Latin", builtInPairs(), u"ghbdtn", {}, 0},
        {"Latin against the active layout", builtInPairs(), u"ghbdtn", 1, 0},
        {"Cyrillic", builtInPairs(), u"руддщ", {}, 1},
        {"repeats count", builtInPairs(), u"abжжж", {}, 1},
        {"tie, first active", builtInPairs(), u"aж", 0, 0},
        {"tie, second active", builtInPairs(), u"aж", 1, 1},
        {"punctuation, first active", builtInPairs(), u".,", 0, 0},
        {"punctuation, second active", builtInPairs(), u".,", 1, 1},
        {"punctuation both would change", builtInPairs(), u".,", {}, {}},
        {"both would change, unknown index", builtInPairs(), u".,", 7, {}},
        {"only the first changes it", builtInPairs(), u"[", {}, 0},
        {"only the first changes it, unknown index", builtInPairs(), u"[", 2, 0},
        {"only the first changes it, second active", builtInPairs(), u"[", 1, {}},
        {"nothing changes", builtInPairs(), u"2024", 0, {}},
        {"empty", builtInPairs(), u"", 0, {}},
        {"no pairs", {}, u"abc", 0, {}},
        {"letter beside an empty side counts", oneSided, u"ж", {}, 1},
        {"and on the other side", oneSided, u"s", {}, 0},
        {"not of a pair that is not primary", oneSided, u"ы.", 0, 0},
        {"only the second changes it", oneSided, u"ы", {}, 1},
        {"shared letters never count", shared, u"abcbcb", 1, 1},
        {"decomposed letter counts", shared, u"abce\u0301", {}, 0},
        {"a marked letter is not the letter", builtInPairs(), u"a\u0331ж", {}, 1},
        {"nor after a block's last letter",
         builtInPairs(),
         std::u16string(32, u'ж') + std::u16string(32, u'a') + u"\u0331",
         {},
         1},
        {"supplementary letter", rare, u"\U00010400", 1, 0},
        {"letter with a mark", rare, u"q\u0331q\u0331\uFEFB", 0, 1},
    };
    for (const Case& testCase : cases) {
        const PhysicalLayoutMapping mapping(testCase.pairs);
        EXPECT_EQ(mapping.direction(testCase.text, testCase.active), testCase.source)
            << testCase.name;
    }
}

TEST(PhysicalLayoutMapping, convertsStringsIntoTheOtherLayout) {
    const PhysicalLayoutMapping mapping = builtInMapping();
    EXPECT_EQ(mapping.convertString(u"Ghbdtn, vbh", {}), (StringConversion{u"Приветб мир", 1}));
    EXPECT_EQ(mapping.convertString(u"руддщ", 0), (StringConversion{u"hello", 0}));
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
        {u"", 5, u"", 0},
        {u"aaa", 2, u"ааа", 2},
        {u"aba", 2, u"а\U0001F600а", 3},
        {u"aba", 0, u"а\U0001F600а", 0},
        {u"aba", -1, u"а\U0001F600а", 0},
        {u"aba", 3, u"а\U0001F600а", 4},
        {u"aba", 9, u"а\U0001F600а", 4},
        {u"aba", {}, u"а\U0001F600а", 4},
        {u"aba", INT64_MAX, u"а\U0001F600а", 4},
        {u"aca", 2, u"аe\u0331fа", 3}, // one character of the output, two units
        {u"axyza", 2, u"аэа", 2},      // inside a token: after as many characters of its output
        {u"axyza", 4, u"аэа", 2},
        {u"axyza", 5, u"аэа", 3},
        {u"q\u0331a", 1, u"q\u0331а", 2},
        {u"\r\na", 2, u"\r\nа", 3},
    };
    const PhysicalLayoutMapping mapping(pairs);
    for (const Case& testCase : cases) {
        EXPECT_EQ(mapping.translate(testCase.text, 0, testCase.caret),
                  (Translation{testCase.converted, testCase.expected}))
            << toUtf8(testCase.text) << " at " << testing::PrintToString(testCase.caret);
    }
}

} // namespace
} // namespace kelvora
