// SPDX-License-Identifier: MIT
#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/encoding.h"
#include "core/text/normalization.h"

#include <gtest/gtest.h>
#include <string>

namespace kelvora {
namespace {

using namespace std::string_literals;

constexpr char16_t loneLead = 0xD83D;
constexpr char16_t loneTrail = 0xDE00;

TEST(Text, comparesCanonicallyAndFindsWholeCharacters) {
    const std::u16string cafe = u"cafe\u0301";
    for (const char16_t* other : {u"", u"cafe", u"caf\u00E9x", u"café\u0323"}) {
        EXPECT_FALSE(canonicallyEqual(cafe, other)) << toUtf8(other);
        EXPECT_FALSE(canonicallyEqual(other, cafe)) << toUtf8(other);
    }
    EXPECT_FALSE(canonicallyEqual(std::u16string(1, loneLead), u"\uFFFD"));
    // Longer than what normalisation has room for on its stack.
    EXPECT_EQ(toNfc(u"xe\u0301" + std::u16string(100, u'\u0323')).size(), 102u);

    EXPECT_TRUE(containsText(u"un cafe\u0301 noir", u"caf\u00E9"));
    EXPECT_TRUE(containsText(u"aaab", u"aab"));
    EXPECT_FALSE(containsText(u"cafe\u0323\u0301", u"cafe"));
    EXPECT_FALSE(containsText(u"a\r\nb", u"\n"));
    EXPECT_TRUE(containsText(u"cafe\u0331 cafe", u"cafe"));
}

TEST(Text, classesGoByTheFirstScalar) {
    const struct {
        std::u16string character;
        std::string classes; // l letter, n number, w whitespace, b line break, c control
    } cases[] = {
        {u"", ""},
        {u"a\u0301", "l"},
        {u"7", "n"},
        {u"\u2167", "ln"}, // Roman numeral eight
        {u"\u4E00", "ln"}, // the ideograph one
        {u"\u2116", ""},   // numero sign
        {u"\U0001D7D8", "n"},
        {u"\u00A0", "w"},
        {u"\t", "wc"},
        {u"\v", "wbc"},
        {u"\r\n", "wbc"},
        {u"\u0085", "wbc"},
        {u"\u2028", "wb"},
        {u"\u200B", "c"},
        {u"\u200D", "c"},
        {u"\U000E0001", "c"},
        {u"\u0301", ""},
        {std::u16string(1, loneLead), ""},
    };
    for (const auto& [character, expected] : cases) {
        std::string classes = isLetter(character) ? "l" : "";
        classes += isNumber(character) ? "n" : "";
        classes += isWhitespace(character) ? "w" : "";
        classes += isLineBreak(character) ? "b" : "";
        classes += containsControl(character) ? "c" : "";
        EXPECT_EQ(classes, expected) << testing::PrintToString(character);
    }
    int whitespaces = 0;
    for (char16_t unit = 0; unit < 0xFFFF; ++unit)
        whitespaces += isWhitespace({&unit, 1}) ? 1 : 0;
    EXPECT_EQ(whitespaces, 25);
    EXPECT_EQ(trimmed(u" \t\r\n\u00A0\u0085\u2029a b\u3000\f"), u"a b");
    EXPECT_EQ(trimmed(u"\u200Ba \u0301"), u"\u200Ba \u0301");
}

TEST(Text, replacesMalformedInput) {
    const struct {
        std::string utf8;
        std::u16string utf16;
    } cases[] = {
        {"\0a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"s, u"\0a\u00E9\u20AC\U0001F600"s},
        {"\xC0\xAF"s, u"\uFFFD\uFFFD"},                     // overlong
        {"\xE0\x80\x80"s, u"\uFFFD\uFFFD\uFFFD"},           // overlong
        {"\xED\xA0\x80"s, u"\uFFFD\uFFFD\uFFFD"},           // surrogate
        {"\xF4\x90\x80\x80"s, u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // past the last scalar
        {"\xF0\x9F\x98x"s, u"\uFFFDx"},                     // cut short
        {"\xE2\x82"s, u"\uFFFD"},
        {"\xF4\x8F\xBF\xBF\xEF\xBF\xBF\xED\x9F\xBF"s, u"\U0010FFFF\uFFFF\uD7FF"},
    };
    for (const auto& [utf8, utf16] : cases)
        EXPECT_EQ(toUtf16(utf8), utf16);
    const std::u16string broken = {u'a', loneTrail, loneLead, u'b', loneLead};
    const std::u16string repaired = u"a\uFFFD\uFFFDb\uFFFD";
    EXPECT_EQ(toUtf8(broken), toUtf8(repaired));
    EXPECT_EQ(toWellFormed(broken), repaired);
    const std::u16string good = u"\u0000\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"s;
    EXPECT_EQ(toUtf16(toUtf8(good)), good);
    EXPECT_EQ(toWellFormed(good), good);
}

} // namespace
} // namespace kelvora
