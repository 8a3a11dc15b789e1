// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/encoding.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

using namespace std::string_literals;

constexpr char16_t loneLead = 0xD83D;
constexpr char16_t loneTrail = 0xDE00;

TEST(Text, splitsCharacters) {
    const std::vector<std::vector<std::u16string>> cases = {
        {},
        {u"a", u"b"},
        {u"a", u"\r\n", u"b"},
        {u"\n", u"\r"},
        {u"e\u0301", u"x"},
        {u"x", u"\n", u"\u0301"},
        {u"\U0001F468\u200D\U0001F469\u200D\U0001F467", u"!"},
        {u"\U0001F1F7\U0001F1FA", u"\U0001F1FA\U0001F1F8", u"\U0001F1EB"},
        {u"\u1112\u1161\u11AB", u"\uAE00"},
        {u"\u0600a", u"b"}, // a prepended mark joins what follows
        {u"a", std::u16string(1, loneLead), u"b", std::u16string(1, loneTrail)},
        {u"a", std::u16string(1, loneTrail), std::u16string(1, loneLead)},
    };
    for (const std::vector<std::u16string>& expected : cases) {
        std::u16string text;
        std::vector<std::size_t> boundaries = {0};
        for (const std::u16string& character : expected) {
            text += character;
            boundaries.push_back(text.size());
        }
        SCOPED_TRACE(toUtf8(text));
        std::vector<std::u16string> found;
        for (const std::u16string_view character : Characters(text)) {
            found.emplace_back(character);
        }
        EXPECT_EQ(found, expected);
        EXPECT_EQ(characterCount(text), expected.size());

        CharacterSegmenter segmenter(text);
        std::vector<std::size_t> accepted;
        for (std::size_t offset = 0; offset <= text.size() + 1; ++offset) {
            if (segmenter.isBoundary(offset)) {
                accepted.push_back(offset);
            }
        }
        EXPECT_EQ(accepted, boundaries);
        for (std::size_t i = boundaries.size() - 1; i > 0; --i) {
            EXPECT_EQ(segmenter.previous(boundaries[i]), boundaries[i - 1]);
        }
    }
}

TEST(Text, comparesCanonically) {
    struct Case {
        std::u16string left;
        std::u16string right;
        bool isEqual;
    };
    const std::vector<Case> cases = {
        {u"", u"", true},
        {u"a", u"", false},
        {u"ab", u"a", false},
        {u"caf\u00E9", u"cafe\u0301", true},
        {u"cafe", u"cafe\u0301", false},
        {u"e\u0301", u"\u00E9x", false},
        {u"\u212A", u"K", true},
        {u"\u212B", u"A\u030A", true},
        {u"\u037E", u";", true},
        {u"\u1FEF", u"`", true},
        {u"\u0438\u0306", u"\u0439", true},
        {u"q\u0307\u0323", u"q\u0323\u0307", true},
        {u"\u1112\u1161\u11AB", u"\uD55C", true},
        {u"\uFB01", u"fi", false},
        {u"\u2002", u"\u2000", true},
        {std::u16string(1, loneLead), u"\uFFFD", false},
        {std::u16string(1, loneLead), std::u16string(1, loneLead), true},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(toUtf8(testCase.left) + " and " + toUtf8(testCase.right));
        EXPECT_EQ(canonicallyEqual(testCase.left, testCase.right), testCase.isEqual);
        EXPECT_EQ(canonicallyEqual(testCase.right, testCase.left), testCase.isEqual);
    }
    EXPECT_EQ(toNfc(u"xe\u0301" + std::u16string(100, u'\u0323')).size(), 102u);
}

TEST(Text, findsWholeCharactersOnly) {
    EXPECT_TRUE(containsText(u"un cafe\u0301 noir", u"caf\u00E9"));
    EXPECT_TRUE(containsText(u"aaab", u"aab"));
    EXPECT_FALSE(containsText(u"cafe\u0323\u0301", u"cafe"));
    EXPECT_FALSE(containsText(u"a\r\nb", u"\n"));
    EXPECT_TRUE(containsText(u"cafe\u0331 cafe", u"cafe"));
}

TEST(Text, classesGoByTheFirstScalar) {
    struct Case {
        std::u16string character;
        std::string classes; // l letter, n number, w whitespace, b line break, c control
    };
    const std::vector<Case> cases = {
        {u"", ""},
        {u"a", "l"},
        {u"\u0439", "l"},
        {u"e\u0301", "l"},
        {u"7", "n"},
        {u"\u00BD", "n"},
        {u"\u2167", "ln"}, // Roman numeral eight
        {u"\u4E00", "ln"}, // the ideograph one
        {u"\u2116", ""},   // numero sign
        {u"\U0001D7D8", "n"},
        {u"\U00010400", "l"},
        {u" ", "w"},
        {u" \u0301", "w"},
        {u"\u00A0", "w"},
        {u"\u3000", "w"},
        {u"\t", "wc"},
        {u"\n", "wbc"},
        {u"\v", "wbc"},
        {u"\f", "wbc"},
        {u"\r\n", "wbc"},
        {u"\u0085", "wbc"},
        {u"\u2028", "wb"},
        {u"\u2029", "wb"},
        {u"\u001F", "c"},
        {u"\u200B", "c"},
        {u"\uFEFF", "c"},
        {u"\u180E", "c"},
        {u"\u00AD", "c"},
        {u"\u200D", "c"},
        {u"\U000E0001", "c"},
        {u"\u0301", ""},
        {std::u16string(1, loneLead), ""},
    };
    for (const Case& testCase : cases) {
        const std::u16string& character = testCase.character;
        std::string classes;
        classes += isLetter(character) ? "l" : "";
        classes += isNumber(character) ? "n" : "";
        classes += isWhitespace(character) ? "w" : "";
        classes += isLineBreak(character) ? "b" : "";
        classes += containsControl(character) ? "c" : "";
        EXPECT_EQ(classes, testCase.classes) << testing::PrintToString(character);
    }
}

TEST(Text, whitespaceHasTwentyFiveScalars) {
    int count = 0;
    for (char16_t unit = 0; unit < 0xFFFF; ++unit) {
        count += isWhitespace({&unit, 1}) ? 1 : 0;
    }
    EXPECT_EQ(count, 25);
}

TEST(Text, trimsBothEnds) {
    EXPECT_EQ(trimmed(u" \t\r\n\u00A0\u0085\u2029a b\u3000\f"), u"a b");
    EXPECT_EQ(trimmed(u" \n"), u"");
    EXPECT_EQ(trimmed(u"\u200Ba \u0301"), u"\u200Ba \u0301");
}

TEST(Text, replacesMalformedInput) {
    struct Case {
        std::string utf8;
        std::u16string utf16;
    };
    const std::vector<Case> fromUtf8 = {
        {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"s, u"a\u00E9\u20AC\U0001F600"},
        {"\0b"s, u"\0b"s},
        {"\x80\xBF"s, u"\uFFFD\uFFFD"},
        {"\xC0\xAF"s, u"\uFFFD\uFFFD"},                     // overlong
        {"\xE0\x80\x80"s, u"\uFFFD\uFFFD\uFFFD"},           // overlong
        {"\xED\xA0\x80"s, u"\uFFFD\uFFFD\uFFFD"},           // surrogate
        {"\xF4\x90\x80\x80"s, u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // past the last scalar
        {"\xF0\x9F\x98x"s, u"\uFFFDx"},                     // cut short
        {"\xE2\x82"s, u"\uFFFD"},
        {"\xF4\x8F\xBF\xBF\xEF\xBF\xBF\xED\x9F\xBF"s, u"\U0010FFFF\uFFFF\uD7FF"},
    };
    for (const Case& testCase : fromUtf8) {
        EXPECT_EQ(toUtf16(testCase.utf8), testCase.utf16);
    }
    const std::u16string broken = {u'a', loneTrail, loneLead, u'b', loneLead};
    EXPECT_EQ(toUtf8(broken), "a\xEF\xBF\xBD\xEF\xBF\xBD"
                              "b\xEF\xBF\xBD");
    EXPECT_EQ(toWellFormed(broken), u"a\uFFFD\uFFFDb\uFFFD");
    const std::u16string good = u"\u0000\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"s;
    EXPECT_EQ(toUtf16(toUtf8(good)), good);
    EXPECT_EQ(toWellFormed(good), good);
}

} // namespace
} // namespace kelvora
