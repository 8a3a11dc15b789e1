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
    InputSource noFlag = layout("no flag", u'a');
    noFlag.isSelectCapable.reset();
    InputSource notCapable = layout("not capable", u'a');
    notCapable.isSelectCapable = false;
    InputSource noId = layout("no id", u'a');
    noId.id.reset();
    InputSource noName = layout("no name", u'a');
    noName.localizedName.reset();
    InputSource inputMethod = layout("input method", u'a');
    inputMethod.keyLayoutData.reset();
    ListedSources sources;
    sources.list = {layout("z", u'z'), noFlag,           notCapable, noId, noName, inputMethod,
                    layout("a", u'a'), layout("z", u'y')};
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
    sources.current->id.reset();
    EXPECT_EQ(Switcher::currentID(sources), std::nullopt);
}

TEST(InputSourceSwitcher, selectsTheFirstEnabledSourceWithTheIdentifier) {
    InputSource notCapable = layout("us", u'a');
    notCapable.isSelectCapable = false;
    notCapable.localizedName = "first";
    ListedSources sources;
    sources.list = {InputSource{true, {}, "nameless", dataOf(u'x')}, notCapable,
                    layout("us", u'b')};
    EXPECT_TRUE(Switcher::select(sources, "us"));
    EXPECT_FALSE(Switcher::select(sources, "ru"));
    EXPECT_FALSE(Switcher::select(sources, ""));
    const std::vector<std::optional<std::string>> expected{"first"};
    EXPECT_EQ(sources.selected, expected);
    sources.isSelectRefused = true;
    EXPECT_FALSE(Switcher::select(sources, "us"));
    sources.list.reset();
    EXPECT_FALSE(Switcher::select(sources, "us"));
}

TEST(InputSourceSwitcher, mapsBetweenTwoEnabledLayouts) {
    InputSource inputMethod = layout("input method", u'm');
    inputMethod.keyLayoutData.reset();
    ListedSources sources;
    sources.list = {layout("us", u'a'), layout("xx", u'\u00E4'), inputMethod};
    const OneKeyTranslator translator;
    const auto mapping = Switcher::mapping(sources, translator, "us", "xx");
    ASSERT_TRUE(mapping);
    EXPECT_EQ(mapping->convert(u"abä", 0), u"äbä");
    EXPECT_EQ(mapping->convert(u"abä", 1), u"aba");
    const auto same = Switcher::mapping(sources, translator, "xx", "xx");
    ASSERT_TRUE(same);
    EXPECT_EQ(same->convertString(u"aä", 0), std::nullopt);
    for (const char* absent : {"input method", "ru", ""}) {
        EXPECT_FALSE(Switcher::mapping(sources, translator, "us", absent)) << absent;
        EXPECT_FALSE(Switcher::mapping(sources, translator, absent, "us")) << absent;
    }
}

} // namespace
} // namespace kelvora
