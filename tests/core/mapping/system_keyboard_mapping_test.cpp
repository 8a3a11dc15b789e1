// SPDX-License-Identifier: MIT
#include "core/mapping/system_keyboard_mapping.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

constexpr std::uint32_t ansi = 0;
constexpr std::uint32_t iso = 1;
constexpr std::uint32_t jis = 2;

/// Layouts named by one byte of data; every key types what the test says, others `fallback`.
class TableTranslator final : public KeyTranslator {
public:
    std::map<std::tuple<std::byte, KeyCode, std::uint32_t>, std::u16string> texts;
    std::u16string fallback;
    std::ptrdiff_t reportedLength = 0; ///< instead of the true one, unless 0
    mutable std::vector<std::pair<KeyCode, std::uint32_t>> asked; ///< of the first layout

    std::ptrdiff_t translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                             std::uint32_t modifierState, std::uint32_t /*keyboardType*/,
                             std::span<char16_t> output) const override {
        if (layoutData[0] == std::byte{1})
            asked.emplace_back(keyCode, modifierState);
        const auto found = texts.find({layoutData[0], keyCode, modifierState});
        const std::u16string& text = found != texts.end() ? found->second : fallback;
        std::copy_n(text.begin(), std::min(text.size(), output.size()), output.begin());
        return reportedLength != 0 ? reportedLength : static_cast<std::ptrdiff_t>(text.size());
    }
    PhysicalLayoutType layoutType(std::uint32_t keyboardType) const override {
        return keyboardType == iso   ? PhysicalLayoutType::iso
               : keyboardType == jis ? PhysicalLayoutType::jis
                                     : PhysicalLayoutType::ansi;
    }
};

const std::vector<std::byte> first{std::byte{1}};
const std::vector<std::byte> second{std::byte{2}};

std::vector<PhysicalKeyPair> pairsOf(const TableTranslator& translator,
                                     std::uint32_t keyboardType = ansi) {
    return SystemKeyboardMapping::pairs(translator, first, second, keyboardType);
}

TEST(SystemKeyboardMapping, asksEveryKeyOfTheBoardForEveryCombinationInOrder) {
    struct {
        std::uint32_t keyboardType;
        bool hasIsoKey;
        std::vector<KeyCode> extra;
    } const cases[] = {{ansi, false, {}}, {iso, true, {}}, {jis, false, {93, 94}}};
    for (const auto& c : cases) {
        std::vector<KeyCode> keys;
        for (KeyCode key = 0; key <= 50; ++key) {
            if (key != 10 || c.hasIsoKey)
                keys.push_back(key);
        }
        keys.insert(keys.end(), c.extra.begin(), c.extra.end());
        std::vector<std::pair<KeyCode, std::uint32_t>> expected;
        for (const std::uint32_t modifiers : {0u, 2u, 4u, 6u, 8u, 10u, 12u, 14u}) {
            for (const KeyCode key : keys)
                expected.emplace_back(key, modifiers);
        }
        const TableTranslator translator;
        EXPECT_TRUE(pairsOf(translator, c.keyboardType).empty());
        EXPECT_EQ(translator.asked, expected) << c.keyboardType;
    }
}

TEST(SystemKeyboardMapping, keepsTheOrderAndMarksPlainAndShiftAsPrimary) {
    TableTranslator translator;
    int number = 0;
    std::vector<PhysicalKeyPair> expected;
    for (const std::uint32_t modifiers : {0u, 2u, 4u, 6u, 8u, 10u, 12u, 14u}) {
        for (const KeyCode key : {KeyCode{0}, KeyCode{50}}) {
            const std::u16string text(1, static_cast<char16_t>(u'A' + number++));
            translator.texts[{std::byte{1}, key, modifiers}] = text;
            translator.texts[{std::byte{2}, key, modifiers}] = u"e\u0301"; // é, decomposed
            expected.emplace_back(text, u"\u00E9", modifiers <= 2);
        }
    }
    EXPECT_EQ(pairsOf(translator), expected);
}

TEST(SystemKeyboardMapping, leavesOutACombinationThatEitherLayoutDoesNotType) {
    TableTranslator translator;
    translator.texts = {{{std::byte{1}, 0, 0}, u"a"}, {{std::byte{1}, 0, 2}, u"A"},
                        {{std::byte{2}, 0, 2}, u"Ф"}, {{std::byte{2}, 1, 0}, u"ы"},
                        {{std::byte{1}, 2, 0}, u"d"}, {{std::byte{2}, 2, 0}, u" "}};
    const std::vector<PhysicalKeyPair> expected{PhysicalKeyPair(u"A", u"Ф")};
    EXPECT_EQ(pairsOf(translator), expected);
}

TEST(SystemKeyboardMapping, takesOnlyVisibleText) {
    struct {
        const char* what;
        std::u16string typed;
        std::u16string taken; ///< empty: nothing
    } const cases[] = {
        {"nothing", u"", u""},
        {"several letters", u"لا", u"لا"},
        {"beyond the BMP", u"\U0001F600", u"\U0001F600"},
        {"Return", u"\r", u""},
        {"Tab", u"\t", u""},
        {"Space", u" ", u""},
        {"no-break space", u"\u00A0", u""},
        {"letter and space", u"a ", u""},
        {"ideographic space", u"\u3000", u""},
        {"line separator", u"\u2028", u""},
        {"next line", u"\u0085", u""},
        {"zero width space is no white space but a format character", u"\u200B", u""},
        {"Delete", u"\u007F", u""},
        {"joiners", u"\u0915\u094D\u200D", u"\u0915\u094D\u200D"},
        {"non-joiner alone", u"\u200C", u"\u200C"},
        {"direction mark", u"\u200E", u""},
        {"direction mark in a text", u"ab\u200E", u""},
        {"soft hyphen", u"\u00AD", u""},
        {"tag beyond the BMP", u"\U000E0061", u""},
        {"first function-key code", u"\uF700", u""},
        {"last function-key code", u"a\uF8FF", u""},
        {"private use below them", u"\uF6FF", u"\uF6FF"},
        {"compatibility ideograph above them", u"\uF900", u"\u8C48"},
        {"combining mark", u"\u0323", u"\u0323"},
        {"unpaired surrogate", std::u16string{u'a', 0xD800}, u"a\uFFFD"},
        {"line feed joined to CR", u"a\r\n", u""},
        {"255 units", std::u16string(255, u'x'), std::u16string(255, u'x')},
        {"256 units", std::u16string(256, u'x'), u""},
    };
    for (const auto& c : cases) {
        TableTranslator translator;
        translator.texts = {{{std::byte{1}, 0, 0}, c.typed}, {{std::byte{2}, 0, 0}, u"z"}};
        std::vector<PhysicalKeyPair> expected;
        if (!c.taken.empty())
            expected.emplace_back(c.taken, u"z");
        EXPECT_EQ(pairsOf(translator), expected) << c.what;
    }
}

TEST(SystemKeyboardMapping, failuresOfTheTranslatorDropTheKey) {
    for (const std::ptrdiff_t length :
         {std::ptrdiff_t{-1}, std::ptrdiff_t{256}, std::ptrdiff_t{1} << 40}) {
        TableTranslator translator;
        translator.fallback = u"x";
        translator.reportedLength = length;
        EXPECT_TRUE(pairsOf(translator).empty()) << length;
    }
}

TEST(SystemKeyboardMapping, emptyDataIsNotAskedAbout) {
    TableTranslator translator;
    translator.fallback = u"x";
    EXPECT_TRUE(SystemKeyboardMapping::pairs(translator, first, {}, ansi).empty());
    EXPECT_TRUE(SystemKeyboardMapping::pairs(translator, {}, second, ansi).empty());
    EXPECT_TRUE(translator.asked.empty());
    EXPECT_EQ(SystemKeyboardMapping::mapping(translator, {}, {}, ansi).convertString(u"x", 0),
              std::nullopt);
}

TEST(SystemKeyboardMapping, aTextOfAnEarlierCombinationDecides) {
    TableTranslator translator;
    translator.texts = {{{std::byte{1}, 40, 8}, u"q"},
                        {{std::byte{2}, 40, 8}, u"ж"},
                        {{std::byte{1}, 12, 0}, u"q"},
                        {{std::byte{2}, 12, 0}, u"й"}};
    const auto mapping = SystemKeyboardMapping::mapping(translator, first, second, ansi);
    EXPECT_EQ(mapping.convert(u"q", 0), u"й");
    EXPECT_EQ(mapping.convert(u"жй", 1), u"qq");
}

} // namespace
} // namespace kelvora
