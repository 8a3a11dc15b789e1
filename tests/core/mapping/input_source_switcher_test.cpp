// SPDX-License-Identifier: MIT
#include "core/mapping/input_source_switcher.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {
namespace {

KeyLayoutData dataOf(char16_t letter) {
    return std::make_shared<const std::vector<std::byte>>(
        std::vector<std::byte>{static_cast<std::byte>(letter)});
}

InputSource layout(std::string id, char16_t letter) {
    return {true, id, "Name of " + id, dataOf(letter)};
}

/// Key 0 of a layout types the letter that its data holds.
class OneKeyTranslator final : public KeyTranslator {
public:
    std::ptrdiff_t translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                             std::uint32_t modifierState, std::uint32_t keyboardType,
                             std::span<char16_t> output) const override {
        if (keyCode != keyboardType || modifierState != 0)
            return -1;
        output[0] = static_cast<char16_t>(layoutData[0]);
        return 1;
    }
    PhysicalLayoutType layoutType(std::uint32_t) const override { return PhysicalLayoutType::ansi; }
};

class ListedSources final : public InputSources {
public:
    std::optional<std::vector<InputSource>> list;
    std::optional<InputSource> current;
    bool isSelectRefused = false;
    std::vector<std::optional<std::string>> selected;

    std::optional<std::vector<InputSource>> enabledSources() override { return list; }
    std::optional<InputSource> currentSource() override { return current; }
    bool select(const InputSource& source) override {
        selected.push_back(source.localizedName);
        return !isSelectRefused;
    }
    std::uint32_t keyboardType() override { return 7; }
};

using Switcher = InputSourceSwitcher;

TEST(InputSourceSwitcher, listsWhatCanBeSelectedAndConvertedBetween) {
    ListedSources sources;
    sources.list = {layout("z", u'z'),
                    {{}, "no flag", "x", dataOf(u'a')},
                    {false, "not capable", "x", dataOf(u'a')},
                    {true, {}, "no id", dataOf(u'a')},
                    {true, "no name", {}, dataOf(u'a')},
                    {true, "input method", "x", nullptr},
                    layout("a", u'a'),
                    layout("z", u'y')};
    const std::vector<InputSourceChoice> expected{
        {"z", "Name of z"}, {"a", "Name of a"}, {"z", "Name of z"}};
    EXPECT_EQ(Switcher::enabledLayouts(sources), expected);
    sources.list.reset();
    EXPECT_TRUE(Switcher::enabledLayouts(sources).empty());
}

TEST(InputSourceSwitcher, reportsTheActiveSourceWhateverItIs) {
    ListedSources sources;
    EXPECT_EQ(Switcher::currentID(sources), std::nullopt);
    sources.current = InputSource{{}, "input method", {}, nullptr};
    EXPECT_EQ(Switcher::currentID(sources), "input method");
}

TEST(InputSourceSwitcher, selectsTheFirstEnabledSourceWithTheIdentifier) {
    ListedSources sources;
    sources.list = {
        {true, {}, "nameless", dataOf(u'x')}, {false, "us", "first", nullptr}, layout("us", u'b')};
    EXPECT_TRUE(Switcher::select(sources, "us"));
    EXPECT_FALSE(Switcher::select(sources, ""));
    const std::vector<std::optional<std::string>> expected{"first"};
    EXPECT_EQ(sources.selected, expected);
    sources.isSelectRefused = true;
    EXPECT_FALSE(Switcher::select(sources, "us"));
    sources.list.reset();
    EXPECT_FALSE(Switcher::select(sources, "us"));
}

TEST(InputSourceSwitcher, mapsBetweenTwoEnabledLayouts) {
    ListedSources sources;
    sources.list = {
        layout("us", u'a'), layout("xx", u'\u00E4'), {true, "input method", "", nullptr}};
    const OneKeyTranslator translator;
    const auto mapping = Switcher::mapping(sources, translator, "us", "xx");
    ASSERT_TRUE(mapping);
    EXPECT_EQ(mapping->convert(u"abä", 0), u"äbä");
    EXPECT_EQ(mapping->convert(u"abä", 1), u"aba");
    for (const char* absent : {"input method", "ru", ""}) {
        EXPECT_FALSE(Switcher::mapping(sources, translator, "us", absent)) << absent;
        EXPECT_FALSE(Switcher::mapping(sources, translator, absent, "us")) << absent;
    }
}

} // namespace
} // namespace kelvora
