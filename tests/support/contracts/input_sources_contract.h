// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_sources.h"
#include "host/key_translator.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace kelvora::contract {

/// A desktop with exactly three layouts enabled: US (active), Russian, and any third one.
class InputSourcesWorld {
public:
    virtual ~InputSourcesWorld() = default;
    virtual InputSources& sources() = 0;
    virtual const KeyTranslator& translator() = 0;
};

struct InputSourcesFactory {
    std::string name;
    std::function<std::unique_ptr<InputSourcesWorld>()> make;

    friend void PrintTo(const InputSourcesFactory& factory, std::ostream* stream) {
        *stream << factory.name;
    }
};

/// What every InputSources promises. INSTANTIATE_TEST_SUITE_P with the factories to be held to it.
class InputSourcesContract : public testing::TestWithParam<InputSourcesFactory> {
protected:
    std::unique_ptr<InputSourcesWorld> world_ = GetParam().make();
    InputSources& sources_ = world_->sources();

    std::vector<InputSource> enabled() {
        auto list = sources_.enabledSources();
        EXPECT_TRUE(list.has_value());
        return list.value_or(std::vector<InputSource>());
    }

    std::u16string typed(const InputSource& source, KeyCode key, std::uint32_t modifiers) {
        std::array<char16_t, 16> text{};
        const auto length = world_->translator().translate(*source.keyLayoutData, key, modifiers,
                                                           sources_.keyboardType(), text);
        return length > 0 ? std::u16string(text.data(), static_cast<std::size_t>(length))
                          : std::u16string();
    }
};

TEST_P(InputSourcesContract, listsLayoutsThatCanBeToldApart) {
    std::set<std::string> ids;
    for (const InputSource& source : enabled()) {
        EXPECT_EQ(source.isSelectCapable, true);
        ASSERT_TRUE(source.id && source.localizedName && source.keyLayoutData);
        EXPECT_FALSE(source.localizedName->empty());
        ids.insert(*source.id);
    }
    EXPECT_EQ(ids.size(), 3u);
}

TEST_P(InputSourcesContract, keyLayoutDataTellsWhatTheKeysType) {
    const auto list = enabled();
    ASSERT_EQ(list.size(), 3u);
    constexpr std::uint32_t shift = translationModifier::shift;
    EXPECT_EQ(typed(list[0], keyCode::a, 0), u"a");
    EXPECT_EQ(typed(list[0], keyCode::a, shift), u"A");
    EXPECT_EQ(typed(list[1], keyCode::a, 0), u"ф");
    EXPECT_EQ(typed(list[1], keyCode::a, shift), u"Ф");
    EXPECT_EQ(typed(list[0], keyCode::leftShift, 0), u"") << "no key of the main block";
}

TEST_P(InputSourcesContract, selectsEachLayoutAndReportsItAsCurrent) {
    const auto list = enabled();
    ASSERT_EQ(list.size(), 3u);
    ASSERT_TRUE(sources_.currentSource());
    EXPECT_EQ(sources_.currentSource()->id, list[0].id);
    for (const std::size_t index : {1u, 2u, 2u, 0u, 1u}) {
        EXPECT_TRUE(sources_.select(list[index]));
        const auto current = sources_.currentSource();
        ASSERT_TRUE(current);
        EXPECT_EQ(current->id, list[index].id);
        ASSERT_TRUE(current->keyLayoutData);
        EXPECT_EQ(*current->keyLayoutData, *list[index].keyLayoutData);
    }
}

TEST_P(InputSourcesContract, refusesASourceThatIsNotEnabled) {
    ASSERT_TRUE(sources_.select(enabled().at(1)));
    InputSource unknown = enabled().at(0);
    unknown.id = "no such layout";
    EXPECT_FALSE(sources_.select(unknown));
    unknown.id.reset();
    EXPECT_FALSE(sources_.select(unknown));
    ASSERT_TRUE(sources_.currentSource());
    EXPECT_EQ(sources_.currentSource()->id, enabled().at(1).id);
}

} // namespace kelvora::contract
