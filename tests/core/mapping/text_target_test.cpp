// SPDX-License-Identifier: MIT
#include "core/mapping/text_target.h"

#include "core/text/encoding.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace kelvora {
namespace {

TEST(TextTarget, validRangeFitsAndSplitsNothing) {
    const std::u16string text = u"a\U0001F600e\u0301\r\nb"; // starts at 0 1 3 5 7
    const std::set<std::int64_t> boundaries = {0, 1, 3, 5, 7, 8};
    for (std::int64_t location = -1; location <= 9; ++location)
        for (std::int64_t length = -1; length <= 9; ++length)
            EXPECT_EQ(TextTarget::validRange({location, length}, text).has_value(),
                      length >= 0 && boundaries.contains(location) &&
                          boundaries.contains(location + length))
                << location << ", " << length;
    for (const std::int64_t huge : {INT64_MAX, INT64_MIN}) {
        EXPECT_FALSE(TextTarget::validRange({8, huge}, text));
        EXPECT_FALSE(TextTarget::validRange({huge, 0}, text));
        EXPECT_FALSE(TextTarget::validRange({huge, huge}, text));
    }
}

TEST(TextTarget, isTheSelectionOrTheWordOfTheCaret) {
    // ^ is the caret, [ ] the target.
    for (const std::u16string marked :
         {u"[one] ^two", u"one [t^wo] three", u"[word] \t\u00A0^", u"one [two]  ^  three", u"^word",
          u"^", u"word\n^", u"word\n  ^next", u"word\u2028 ^", u"one\r\n[tw^o]\r\nx",
          u"[e\u0301x]^ ", u"word\n[\u0301] ^x", u"[a\u200Bb]^"}) {
        std::u16string text;
        TextRange expected;
        std::size_t caret = 0;
        for (const char16_t unit : marked)
            if (unit == u'[')
                expected.begin = text.size();
            else if (unit == u']')
                expected.end = text.size();
            else if (unit == u'^')
                caret = text.size();
            else
                text.push_back(unit);
        EXPECT_EQ(TextTarget::range(text, {static_cast<std::int64_t>(caret), 0}),
                  expected.isEmpty() ? std::nullopt : std::optional(expected))
            << toUtf8(marked);
    }
    EXPECT_EQ(TextTarget::range(u"one two", {2, 3}), (TextRange{2, 5}));
    EXPECT_EQ(TextTarget::range(u" \n ", {0, 3}), (TextRange{0, 3}));
    EXPECT_EQ(TextTarget::range(u"e\u0301", {0, 1}), std::nullopt);
}

} // namespace
} // namespace kelvora
