// SPDX-License-Identifier: MIT
#include "tests/host/atspi/hostile_application.h"

#include "host/linux/atspi/atspi_accessibility.h"
#include "host/linux/atspi/atspi_element.h"
#include "host/linux/atspi/atspi_focus.h"
#include "host/linux/atspi/atspi_opt_in.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <utility>

namespace kelvora {
namespace {

using namespace accessibilityAttribute;

TEST(HostileApplications, GetTheTextConvertedOrAsItWas) {
    const std::u32string asItWas = U"one two three";
    const std::u32string converted = U"one ецщщ three";
    constexpr auto failure = AccessibilityError::failure;
    constexpr auto cannotComplete = AccessibilityError::cannotComplete;
    struct {
        const char* name;
        Misdeed misdeed;
        AccessibilityError error;
        std::u32string text;    ///< once it has done all that it was asked to
        std::u32string asked{}; ///< the same of one that stopped, when it was asked again
    } const cases[] = {
        {"none", Misdeed::none, AccessibilityError::success, converted},
        {"refuses", Misdeed::refusesInsertion, failure, asItWas},
        {"ignores", Misdeed::ignoresInsertion, failure, asItWas},
        {"cuts", Misdeed::cutsInsertion, failure, asItWas},
        {"pads", Misdeed::padsInsertion, failure, asItWas},
        {"alters", Misdeed::altersInsertion, failure, asItWas},
        {"ignores the deletion", Misdeed::ignoresDeletion, failure, asItWas},
        {"corrects", Misdeed::correctsAtDeletion, cannotComplete, U"one #ецщщ three"},
        {"stops", Misdeed::stopsAtInsertion, cannotComplete, U"one twoецщщ three", asItWas},
        {"stops then", Misdeed::stopsAfterInsertion, cannotComplete, U"one twoецщщ three", asItWas},
        {"stops, refuses", Misdeed::stopsAndRefuses, cannotComplete, asItWas, asItWas},
        {"stops, cuts", Misdeed::stopsAndCuts, cannotComplete, U"one twoец three",
         U"one twoец three"},
        {"stops late", Misdeed::stopsAtDeletion, cannotComplete, converted, converted},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        HostileApplication application(each.misdeed);
        AtspiElement element(std::make_shared<AtspiSession>(), application.object());
        EXPECT_EQ(std::get<std::u16string>(element.copyAttributeValue(selectedText).value), u"two");
        EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"ецщщ")), each.error);

        // One that does not answer is not asked again.
        const int calls = application.callCount();
        const bool hasStopped = !each.asked.empty();
        if (hasStopped) {
            EXPECT_EQ(element.copyAttributeValue(value).error, cannotComplete);
            EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"x")),
                      cannotComplete);
        }
        application.goOn();
        EXPECT_TRUE(real::waitUntil([&] { return application.text() == each.text; }));
        EXPECT_TRUE(real::staysTrue([&] { return application.text() == each.text; },
                                    std::chrono::milliseconds(50)));
        // Those that were under way when it stopped.
        EXPECT_LE(application.callCount(), calls + (hasStopped ? 2 : 0));
        if (hasStopped) {
            EXPECT_TRUE(real::waitUntil(
                [&] { return element.copyAttributeValue(selectedText).error != cannotComplete; }));
            EXPECT_EQ(application.text(), each.asked);
        }
    }
}

TEST(HostileApplications, LoseNothingThatTheirUserTypedMeanwhile) {
    HostileApplication application(Misdeed::isTypedInto);
    AtspiElement element(std::make_shared<AtspiSession>(), application.object());
    EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"ецщ")),
              AccessibilityError::cannotComplete);
    std::u32string text = application.text();
    std::erase_if(text, [](char32_t scalar) { return scalar > 0x400; });
    EXPECT_EQ(text, U"one z three");
}

TEST(HostileApplications, GetNothingInPlaceOfAnotherSelection) {
    HostileApplication application(Misdeed::none);
    AtspiElement element(std::make_shared<AtspiSession>(), application.object());
    EXPECT_EQ(element.copyAttributeValue(selectedText).error, AccessibilityError::success);
    application.select(0, 3);
    EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"ецщ")),
              AccessibilityError::failure);
    for (const int caret : {0, 5, 13}) {
        SCOPED_TRACE(caret);
        application.select(caret, caret);
        const bool isInside = caret == 5;
        EXPECT_EQ(element.copyAttributeValue(selectedText).error,
                  isInside ? AccessibilityError::success
                           : AccessibilityError::attributeUnsupported);
        EXPECT_EQ(element.textAroundCaret(100).has_value(), isInside);
    }
    EXPECT_EQ(application.text(), U"one two three");
}

TEST(HostileApplications, AreDocumentsUnlessTheirTextIsSeenToHaveOneLine) {
    struct {
        Misdeed misdeed;
        std::u32string text;
        TextRole role;
    } const cases[] = {
        {Misdeed::hasNoMarks, U"one", TextRole::singleLine},
        {Misdeed::hasNoMarks, U"one\ntwo", TextRole::multiLine},
        {Misdeed::refusesToRead, U"one", TextRole::multiLine},
        {Misdeed::refusesHalves, std::u32string(10'001, U'a'), TextRole::singleLine},
    };
    for (const auto& each : cases) {
        HostileApplication application(each.misdeed);
        application.setText(each.text);
        AtspiElement element(std::make_shared<AtspiSession>(), application.object());
        EXPECT_EQ(element.role(), each.role) << static_cast<int>(each.misdeed);
    }
}

TEST(HostileApplications, AreSentNoTextThatTheBusCannotCarry) {
    HostileApplication application(Misdeed::none);
    AtspiElement element(std::make_shared<AtspiSession>(), application.object());
    for (const std::u16string& text : std::vector<std::u16string>{u"a\xD83D",
                                                                  u"\xDE00"
                                                                  u"a",
                                                                  std::u16string(1, u'\0')})
        EXPECT_EQ(element.setAttributeValue(selectedText, text),
                  AccessibilityError::illegalArgument);
    EXPECT_EQ(element.setAttributeValue(selectedText, true), AccessibilityError::illegalArgument);
    EXPECT_EQ(application.text(), U"one two three");
}

// It keeps its focus in a window that nobody sees while another program has the keyboard.
TEST(HostileApplications, AreOnlyAskedInsteadOfAnotherWhileTheyAreVisible) {
    struct KnownFocus final : AtspiFocus {
        explicit KnownFocus(AtspiReference known) : object(std::move(known)) {}
        [[nodiscard]] std::optional<AtspiReference>
        focusedElement(std::int32_t /*process*/) const override {
            return object;
        }
        [[nodiscard]] std::optional<AtspiReference> focusedElement() const override {
            return object;
        }
        AtspiReference object;
    };
    HostileApplication application(Misdeed::none);
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
