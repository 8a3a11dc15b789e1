// SPDX-License-Identifier: MIT
#include "core/mapping/text_target.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/text/encoding.h"

namespace kelvora {
namespace {

TEST(TextTarget, validRangeFitsAndSplitsNothing) {
    const std::u16string text = u"a\U0001F600e\u0301\r\nb"; // starts at 0 1 3 5 7
    struct Case {
        Utf16Range range;
        bool isValid;
    };
    const std::vector<Case> cases = {
        {{0, 0}, true},
        {{0, 8}, true},
        {{8, 0}, true},
        {{1, 2}, true},
        {{3, 2}, true},
        {{5, 2}, true},
        {{9, 0}, false},
        {{8, 1}, false},
        {{0, 9}, false},
        {{-1, 1}, false},
        {{0, -1}, false},
        {{2, 0}, false},
        {{1, 1}, false},
        {{4, 1}, false},
        {{3, 1}, false},
        {{6, 1}, false},
        {{5, 1}, false},
        {{INT64_MAX, 0}, false},
        {{0, INT64_MAX}, false},
        {{8, INT64_MAX}, false},
        {{INT64_MAX, INT64_MAX}, false},
        {{INT64_MIN, INT64_MIN}, false},
    };
    for (const Case& testCase : cases) {
        const auto found = TextTarget::validRange(testCase.range, text);
        EXPECT_EQ(found.has_value(), testCase.isValid)
            << testCase.range.location << ", " << testCase.range.length;
        if (found) {
            EXPECT_EQ(found->utf16Range(), testCase.range);
        }
    }
    EXPECT_TRUE(TextTarget::validRange({0, 0}, u""));
}

TEST(TextTarget, findsTheWordOfACaret) {
    // ^ is the caret, [ ] the target.
    const std::vector<std::u16string> cases = {
        u"[word]^",
        u"[wo^rd]",
        u"[one]^ two",
        u"[one] ^two",
        u"one [t^wo] three",
        u"[word]  ^",
        u"[word] \t\u00A0^",
        u"one [two]  ^  three",
        u"^word",
        u"  ^word",
        u"^",
        u"   ^",
        u"word\n^",
        u"word\n  ^next",
        u"word\r\n^",
        u"word\u2028 ^",
        u"word\u0085^",
        u"word\v^",
        u"one\n[tw^o]\nxyz",
        u"one\r\n[two]^\r\nx",
        u"[gh,2;]^",
        u"[e\u0301x]^ ",
        u"a [\U0001F600]^",
        u"word\n[\u0301] ^x",
        u"[word]\u2003^x",
        u"one\u2029[two]^",
        u"[a\u200Bb]^",
    };
    for (const std::u16string& marked : cases) {
        std::u16string text;
        TextRange expected;
        std::size_t caret = 0;
        for (const char16_t unit : marked) {
            switch (unit) {
            case u'[':
                expected.begin = text.size();
                break;
            case u']':
                expected.end = text.size();
                break;
            case u'^':
                caret = text.size();
                break;
            default:
                text.push_back(unit);
            }
        }
        const auto found = TextTarget::range(text, {static_cast<std::int64_t>(caret), 0});
        EXPECT_EQ(found, expected.isEmpty() ? std::nullopt : std::optional(expected))
            << toUtf8(marked);
    }
}

TEST(TextTarget, takesASelectionAsItIs) {
    EXPECT_EQ(TextTarget::range(u"one two", {2, 3}), (TextRange{2, 5}));
    EXPECT_EQ(TextTarget::range(u" \n ", {0, 3}), (TextRange{0, 3}));
    EXPECT_EQ(TextTarget::range(u"e\u0301", {0, 1}), std::nullopt);
}

} // namespace
} // namespace kelvora
