// SPDX-License-Identifier: MIT
#include "tests/host/atspi/hostile_application.h"

#include "core/text/characters.h"
#include "host/linux/atspi/atspi_accessibility.h"
#include "host/linux/atspi/atspi_element.h"
#include "host/linux/atspi/atspi_focus.h"
#include "host/linux/atspi/atspi_opt_in.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

using namespace accessibilityAttribute;

/// One with an element of ours for its text.
struct Hostile : HostileApplication {
    explicit Hostile(Misdeed misdeed = {}) : HostileApplication(misdeed) {}
    AccessibilityError set(const std::u16string& text) {
        return element.setAttributeValue(selectedText, text);
    }
    AccessibilityError reading() { return element.copyAttributeValue(selectedText).error; }

    AtspiElement element{std::make_shared<AtspiSession>(), object()};
};

TEST(HostileApplications, GetTheTextConvertedOrAsItWas) {
    using Insertion = Misdeed::Insertion;
    using Deletion = Misdeed::Deletion;
    using Stop = Misdeed::Stop;
    const std::u16string asItWas = u"one two three";
    const std::u16string converted = u"one ецщщ three";
    constexpr auto success = AccessibilityError::success;
    constexpr auto failure = AccessibilityError::failure;
    constexpr auto cannotComplete = AccessibilityError::cannotComplete;
    const struct {
        Misdeed misdeed;
        AccessibilityError error;
        std::u16string text;    ///< once it has done all that it was asked to
        std::u16string asked{}; ///< the same of one that stopped, when it was asked again
    } cases[] = {
        {{}, success, converted},
        {{.insertion = Insertion::refused}, failure, asItWas},
        {{.insertion = Insertion::ignored}, failure, asItWas},
        {{.insertion = Insertion::cut}, failure, asItWas},
        {{.insertion = Insertion::altered}, failure, asItWas},
        {{.deletion = Deletion::ignored}, failure, asItWas},
        {{.deletion = Deletion::corrected}, cannotComplete, u"one #ецщщ three"},
        {{.stop = Stop::atInsertion}, cannotComplete, u"one twoецщщ three", asItWas},
        {{.stop = Stop::afterInsertion}, cannotComplete, u"one twoецщщ three", asItWas},
        {{.stop = Stop::atDeletion}, cannotComplete, converted, converted},
        {{Insertion::refused, {}, Stop::atInsertion}, cannotComplete, asItWas, asItWas},
        {{Insertion::cut, {}, Stop::atInsertion},
         cannotComplete,
         u"one twoец three",
         u"one twoец three"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(&each - cases);
        Hostile application(each.misdeed);
        EXPECT_EQ(
            std::get<std::u16string>(application.element.copyAttributeValue(selectedText).value),
            u"two");
        EXPECT_EQ(application.set(u"ецщщ"), each.error);
        // One that does not answer is not asked again.
        const int calls = application.callCount();
        const bool hasStopped = !each.asked.empty();
        if (hasStopped) {
            EXPECT_EQ(application.element.copyAttributeValue(value).error, cannotComplete);
            EXPECT_EQ(application.set(u"x"), cannotComplete);
        }
        application.goOn();
        const auto isAsExpected = [&] { return application.text() == each.text; };
        EXPECT_TRUE(real::waitUntil(isAsExpected));
        EXPECT_TRUE(real::staysTrue(isAsExpected, std::chrono::milliseconds(50)));
        // Those that were under way when it stopped.
        EXPECT_LE(application.callCount(), calls + (hasStopped ? 2 : 0));
        if (hasStopped) {
            EXPECT_TRUE(real::waitUntil([&] { return application.reading() != cannotComplete; }));
            EXPECT_EQ(application.text(), each.asked);
        }
    }
}

TEST(HostileApplications, AreCountedInAsTheyCount) {
    std::u16string families;
    for (int i = 0; i < 20; ++i)
        families += u"👩‍👩‍👧 ";
    for (const bool countsUnits : {false, true}) {
        SCOPED_TRACE(countsUnits);
        Hostile application({.countsUnits = countsUnits});
        application.setText(u"😀é two " + families + u"ghbdtn");
        application.select(countsUnits ? 4 : 3, countsUnits ? 7 : 6);
        EXPECT_EQ(application.set(u"ф👍🏽"), AccessibilityError::success);
        const std::u16string whole = u"😀é ф👍🏽 " + families + u"ghbdtn";
        EXPECT_EQ(application.text(), whole);

        const int caret = countsUnits ? 190 : 127;
        application.select(caret, caret);
        CharacterSegmenter segmenter(whole);
        std::optional<TextStretch> stretch;
        for (std::size_t reach = 1; reach <= 16; ++reach) {
            stretch = application.element.textAroundCaret(reach);
            ASSERT_TRUE(stretch);
            EXPECT_TRUE(segmenter.isBoundary(whole.find(stretch->text))) << "no half characters";
        }
        EXPECT_EQ(stretch->text.substr(stretch->caret), u"ghbdtn");
        const auto replace = [&](const char16_t* text) {
            return application.element.replace(*stretch, stretch->caret, stretch->caret + 6, text,
                                               6);
        };
        EXPECT_EQ(replace(u"привет"), AccessibilityError::success);
        EXPECT_EQ(replace(u"привет"), AccessibilityError::failure) << "it is another text now";
        EXPECT_EQ(application.text(), u"😀é ф👍🏽 " + families + u"привет");
    }
}

TEST(HostileApplications, LoseNothingThatTheirUserTypedMeanwhile) {
    Hostile application({.isTypedInto = true});
    EXPECT_EQ(application.set(u"ецщ"), AccessibilityError::cannotComplete);
    std::u16string text = application.text();
    std::erase_if(text, [](char16_t unit) { return unit > 0x400; });
    EXPECT_EQ(text, u"one z three");
}

TEST(HostileApplications, GetNothingInPlaceOfAnotherSelection) {
    Hostile application;
    EXPECT_EQ(application.reading(), AccessibilityError::success);
    application.select(0, 3);
    EXPECT_EQ(application.set(u"ецщ"), AccessibilityError::failure);
    for (const int caret : {0, 5, 13}) {
        SCOPED_TRACE(caret);
        application.select(caret, caret);
        const bool isInside = caret == 5;
        EXPECT_EQ(application.reading(), isInside ? AccessibilityError::success
                                                  : AccessibilityError::attributeUnsupported);
        EXPECT_EQ(application.element.textAroundCaret(100).has_value(), isInside);
    }
    // Nor what the bus cannot carry.
    for (const std::u16string& text : {std::u16string(u"a\xD83D"), std::u16string(1, u'\0')})
        EXPECT_EQ(application.set(text), AccessibilityError::illegalArgument);
    EXPECT_EQ(application.text(), u"one two three");
}

TEST(HostileApplications, AreReadAndWrittenByWhatTheyAre) {
    constexpr auto success = AccessibilityError::success;
    constexpr auto unsupported = AccessibilityError::attributeUnsupported;
    const struct {
        Misdeed misdeed;
        const char16_t* text;
        TextRole role;
        AccessibilityError reading, writing;
    } cases[] = {
        {{.toolkit = "GTK"}, u"one two", TextRole::singleLine, success, success},
        // The whole text of a field may be replaced, that of a document never.
        {{.toolkit = "GTK"}, u"one two\n", TextRole::multiLine, success, success},
        {{.refusesToRead = true, .toolkit = "GTK"},
         u"one two",
         TextRole::multiLine,
         AccessibilityError::failure,
         AccessibilityError::failure},
        // What is written into it this way cannot be undone.
        {{.toolkit = "Qt"}, u"one two", TextRole::singleLine, success, unsupported},
        {{.toolkit = "GTK", .role = 40}, u"one two", TextRole::password, unsupported, unsupported},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(&each - cases);
        Hostile application(each.misdeed);
        application.setText(each.text);
        EXPECT_EQ(application.element.role(), each.role);
        EXPECT_EQ(application.reading(), each.reading);
        EXPECT_EQ(application.element.copyAttributeValue(value).error, each.reading);
        EXPECT_EQ(application.set(u"ецщ"), each.writing);
    }
}

// It keeps its focus in a window that nobody sees while another program has the keyboard.
TEST(HostileApplications, AreOnlyAskedInsteadOfAnotherWhileTheyAreVisible) {
    struct KnownFocus final : AtspiFocus {
        explicit KnownFocus(const AtspiReference& known) : object(known) {}
        std::optional<AtspiReference> focusedElement(std::int32_t /*process*/) const override {
            return object;
        }
        std::optional<AtspiReference> focusedElement() const override { return object; }
        AtspiReference object;
    };
    const Hostile application;
    const KnownFocus focus(application.object());
    AtspiOptIn optIn({});
    AtspiAccessibility accessibility(focus, optIn);
    EXPECT_EQ(accessibility.createSystemWide()->copyAttributeValue(focusedElement).error,
              AccessibilityError::noValue);
    EXPECT_EQ(accessibility.createApplication(1)->copyAttributeValue(focusedElement).error,
              AccessibilityError::success);
}

} // namespace
} // namespace kelvora
