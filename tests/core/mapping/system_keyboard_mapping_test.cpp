// SPDX-License-Identifier: MIT
#include "core/mapping/system_keyboard_mapping.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace kelvora {
namespace {

constexpr std::uint32_t ansi = 0, iso = 1, jis = 2;

const std::vector<std::byte> first{std::byte{1}};
const std::vector<std::byte> second{std::byte{2}};

/// Layouts named by one byte of data; every key types what the test says, others `fallback`.
class TableTranslator final : public KeyTranslator {
public:
    std::map<std::tuple<std::byte, KeyCode, std::uint32_t>, std::u16string> texts;
    std::u16string fallback;
    std::ptrdiff_t reportedLength = 0; ///< instead of the true one, unless 0

    std::ptrdiff_t translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                             std::uint32_t modifierState, std::uint32_t /*keyboardType*/,
                             std::span<char16_t> output) const override {
        const std::byte layout = layoutData.empty() ? std::byte{} : layoutData.front();
        const auto found = texts.find({layout, keyCode, modifierState});
        const std::u16string& text = found != texts.end() ? found->second : fallback;
        std::copy_n(text.begin(), std::min(text.size(), output.size()), output.begin());
        return reportedLength != 0 ? reportedLength : static_cast<std::ptrdiff_t>(text.size());
    }
    PhysicalLayoutType layoutType(std::uint32_t keyboardType) const override {
        return static_cast<PhysicalLayoutType>(keyboardType);
    }
    std::vector<PhysicalKeyPair> pairs(std::uint32_t keyboardType = ansi) const {
        return SystemKeyboardMapping::pairs(*this, first, second, keyboardType);
    }
};

TEST(SystemKeyboardMapping, takesTheKeysOfTheBoardForEveryCombinationInOrder) {
    for (const std::uint32_t keyboardType : {ansi, iso, jis}) {
        TableTranslator translator;
        char16_t next = u'\u4E00';
        std::vector<PhysicalKeyPair> expected;
        for (std::uint32_t modifiers = 0; modifiers < 16; ++modifiers)
            for (KeyCode key = 0; key < 128; ++key) {
                const std::u16string text(1, next++);
                translator.texts[{std::byte{1}, key, modifiers}] = text;
                translator.texts[{std::byte{2}, key, modifiers}] = u"e\u0301"; // é, decomposed
                const bool isOnBoard = (key <= 50 && (key != 10 || keyboardType == iso)) ||
                                       ((key == 93 || key == 94) && keyboardType == jis);
                if (isOnBoard && modifiers % 2 == 0)
                    expected.emplace_back(text, u"\u00E9", modifiers <= 2);
            }
        EXPECT_EQ(translator.pairs(keyboardType), expected) << keyboardType;
    }
}

TEST(SystemKeyboardMapping, takesOnlyVisibleTextThatBothLayoutsType) {
    const struct {
        const char* what;
        std::u16string typed;
        std::u16string taken; ///< empty: nothing
    } cases[] = {
        {"letter and space", u"a ", u""},
        {"zero width space is no white space but a format character", u"\u200B", u""},
        {"joiners", u"\u0915\u094D\u200D", u"\u0915\u094D\u200D"},
        {"tag beyond the BMP", u"\U000E0061", u""},
        {"first function-key code", u"\uF700", u""},
        {"last function-key code", u"a\uF8FF", u""},
        {"private use below them", u"\uF6FF", u"\uF6FF"},
        {"compatibility ideograph above them", u"\uF900", u"\u8C48"},
        {"unpaired surrogate", std::u16string{u'a', 0xD800}, u"a\uFFFD"},
        {"255 units", std::u16string(255, u'x'), std::u16string(255, u'x')},
        {"256 units", std::u16string(256, u'x'), u""},
    };
    for (const auto& [what, typed, taken] : cases) {
        TableTranslator translator;
        translator.texts = {{{std::byte{1}, 0, 0}, typed},
                            {{std::byte{2}, 0, 0}, u"z"},
                            {{std::byte{2}, 1, 0}, u"only in the second"}};
        std::vector<PhysicalKeyPair> expected;
        if (!taken.empty())
            expected.emplace_back(taken, u"z");
        EXPECT_EQ(translator.pairs(), expected) << what;
    }
}

TEST(SystemKeyboardMapping, takesNothingWithoutDataOrWithAnImpossibleLength) {
    TableTranslator translator;
    translator.fallback = u"x";
    EXPECT_TRUE(SystemKeyboardMapping::pairs(translator, first, {}, ansi).empty());
    EXPECT_TRUE(SystemKeyboardMapping::pairs(translator, {}, second, ansi).empty());
    for (const auto length : {std::ptrdiff_t{-1}, std::ptrdiff_t{256}, std::ptrdiff_t{1} << 40}) {
        translator.reportedLength = length;
        EXPECT_TRUE(translator.pairs().empty()) << length;
    }
}

} // namespace
} // namespace kelvora
