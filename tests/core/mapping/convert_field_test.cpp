// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/text/encoding.h"
#include "tests/core/mapping/built_in_layouts.h"

namespace kelvora {
namespace {

TEST(ConvertField, convertsSelectionOrWord) {
    struct Case {
        std::u16string text;
        Utf16Range selection;
        FieldConversion expected;
    };
    const std::vector<Case> cases = {
        {u"ghbdtn", {6, 0}, {u"привет", Utf16Range{6, 0}, 1, {0, 6}, u"привет"}},
        {u"ghbdtn", {3, 0}, {u"привет", Utf16Range{3, 0}, 1, {0, 6}, u"привет"}},
        {u"ghbdtn vbh", {7, 0}, {u"привет vbh", Utf16Range{7, 0}, 1, {0, 6}, u"привет"}},
        {u"ghbdtn  ", {8, 0}, {u"привет  ", Utf16Range{8, 0}, 1, {0, 6}, u"привет"}},
        {u"ghbdtn", {0, 3}, {u"приdtn", Utf16Range{0, 3}, 1, {0, 3}, u"при"}},
        {u"a руддщ", {7, 0}, {u"a hello", Utf16Range{7, 0}, 0, {2, 5}, u"hello"}},
        {u"\U0001F600 f,", {5, 0}, {u"\U0001F600 аб", Utf16Range{5, 0}, 1, {3, 2}, u"аб"}},
    };
    const PhysicalLayoutMapping mapping = builtInMapping();
    for (const Case& testCase : cases) {
        EXPECT_EQ(mapping.convertField(testCase.text, testCase.selection, {}), testCase.expected)
            << toUtf8(testCase.text);
    }
}

TEST(ConvertField, movesTheCaretWithTheLength) {
    const std::vector<PhysicalKeyPair> pairs = {{u"a", u"\U00010400"}, {u"b", u"cde"}};
    const PhysicalLayoutMapping mapping(pairs);
    EXPECT_EQ(
        mapping.convertField(u"xaa b", Utf16Range{2, 0}, {}),
        (FieldConversion{
            u"x\U00010400\U00010400 b", Utf16Range{3, 0}, 1, {0, 3}, u"x\U00010400\U00010400"}));
    EXPECT_EQ(mapping.convertField(u"bb z", Utf16Range{3, 0}, {}),
              (FieldConversion{u"cdecde z", Utf16Range{7, 0}, 1, {0, 2}, u"cdecde"}));
    EXPECT_EQ(mapping.convertField(u"cdecdez", Utf16Range{0, 6}, {}),
              (FieldConversion{u"bbz", Utf16Range{0, 2}, 0, {0, 6}, u"bb"}));
}

TEST(ConvertField, refuses) {
    const PhysicalLayoutMapping mapping = builtInMapping();
    struct Case {
        std::string name;
        std::u16string text;
        std::optional<Utf16Range> selection;
    };
    const std::vector<Case> cases = {
        {"no selection", u"ghbdtn", {}},
        {"beyond the end", u"ghbdtn", Utf16Range{7, 0}},
        {"length past the end", u"ghbdtn", Utf16Range{3, INT64_MAX}},
        {"negative", u"ghbdtn", Utf16Range{-1, 2}},
        {"inside a surrogate pair", u"q\U0001F600q", Utf16Range{0, 2}},
        {"inside a letter with its mark", u"qe\u0301q", Utf16Range{2, 0}},
        {"caret at the start", u"ghbdtn", Utf16Range{0, 0}},
        {"caret after nothing but spaces", u"   ghbdtn", Utf16Range{3, 0}},
        {"caret after a line feed", u"ghbdtn\n", Utf16Range{7, 0}},
        {"caret after a line feed and spaces", u"ghbdtn\n  ", Utf16Range{9, 0}},
        {"nothing changes", u"2024", Utf16Range{4, 0}},
        {"undecided", u"a,", Utf16Range{1, 1}},
    };
    for (const Case& testCase : cases) {
        EXPECT_FALSE(mapping.convertField(testCase.text, testCase.selection, {})) << testCase.name;
    }
    // The converted mark would join the letter before it, and the new selection would split both.
    const std::vector<PhysicalKeyPair> pairs = {{u"k", u"\u0301"}};
    EXPECT_FALSE(PhysicalLayoutMapping(pairs).convertField(u"ek", Utf16Range{1, 1}, {}));
}

} // namespace
} // namespace kelvora
