// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text/encoding.h"
#include "tests/core/mapping/built_in_layouts.h"

namespace kelvora {
namespace {

TEST(ConvertTypedWord, erasesAndTypesTheLastWord) {
    struct Case {
        std::u16string text;
        std::optional<TypedWordConversion> expected;
    };
    const std::vector<Case> cases = {
        {u"ghbdtn", TypedWordConversion{6, u"привет", 1, u"привет"}},
        {u"ok ghbdtn ", TypedWordConversion{7, u"привет ", 1, u"ok привет "}},
        {u"ok ghbdtn  ", TypedWordConversion{8, u"привет  ", 1, u"ok привет  "}},
        {u"ok\nруддщ", TypedWordConversion{5, u"hello", 0, u"ok\nhello"}},
        {u"gh\U0001F468\u200D\U0001F469e\u0301 ",
         TypedWordConversion{5, u"пр\U0001F468\u200D\U0001F469e\u0301 ", 1,
                             u"пр\U0001F468\u200D\U0001F469e\u0301 "}},
        {u"", {}},
        {u"   ", {}},
        {u"ghbdtn\n", {}},
        {u"ghbdtn 2024", {}},
    };
    const PhysicalLayoutMapping mapping = builtInMapping();
    for (const Case& testCase : cases) {
        EXPECT_EQ(mapping.convertTypedWord(testCase.text, {}), testCase.expected)
            << toUtf8(testCase.text);
    }
}

TEST(ConvertTypedWord, comparesTextsCanonically) {
    const TypedWordConversion conversion{1, u"\u00E9", 1, u"a\u00E9"};
    EXPECT_EQ(conversion, (TypedWordConversion{1, u"e\u0301", 1, u"ae\u0301"}));
    EXPECT_NE(conversion, (TypedWordConversion{2, u"\u00E9", 1, u"a\u00E9"}));
    EXPECT_NE(conversion, (TypedWordConversion{1, u"e", 1, u"a\u00E9"}));
    EXPECT_NE(conversion, (TypedWordConversion{1, u"\u00E9", 0, u"a\u00E9"}));
    EXPECT_NE(conversion, (TypedWordConversion{1, u"\u00E9", 1, u"ae"}));
}

} // namespace
} // namespace kelvora
