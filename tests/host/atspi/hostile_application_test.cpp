// SPDX-License-Identifier: MIT
#include "tests/host/atspi/hostile_application.h"

#include "host/linux/atspi/atspi_element.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

using namespace accessibilityAttribute;

TEST(HostileApplications, GetTheTextConvertedOrAsItWas) {
    const std::u32string asItWas = U"one two three";
    const std::u32string converted = U"one ецщщ three";
    struct {
        const char* name;
        Misdeed misdeed;
        AccessibilityError error;
        std::u32string text; ///< once it has done all that it was asked to
    } const cases[] = {
        {"none", Misdeed::none, AccessibilityError::success, converted},
        {"refuses", Misdeed::refusesInsertion, AccessibilityError::failure, asItWas},
        {"ignores", Misdeed::ignoresInsertion, AccessibilityError::failure, asItWas},
        {"cuts", Misdeed::cutsInsertion, AccessibilityError::failure, asItWas},
        {"pads", Misdeed::padsInsertion, AccessibilityError::failure, asItWas},
        {"alters", Misdeed::altersInsertion, AccessibilityError::failure, asItWas},
        {"ignores the deletion", Misdeed::ignoresDeletion, AccessibilityError::failure, asItWas},
        {"stops", Misdeed::stopsAtInsertion, AccessibilityError::cannotComplete, asItWas},
        {"stops then", Misdeed::stopsAfterInsertion, AccessibilityError::cannotComplete, asItWas},
        {"stops late", Misdeed::stopsAtDeletion, AccessibilityError::cannotComplete, converted},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        HostileApplication application(each.misdeed);
        AtspiElement element(std::make_shared<AtspiSession>(), application.object());
        EXPECT_EQ(std::get<std::u16string>(element.copyAttributeValue(selectedText).value), u"two");
        EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"ецщщ")), each.error);

        // One that does not answer is not asked again.
        const int calls = application.callCount();
        if (each.error == AccessibilityError::cannotComplete) {
            EXPECT_EQ(element.copyAttributeValue(value).error, AccessibilityError::cannotComplete);
            EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"x")),
                      AccessibilityError::cannotComplete);
        }
        application.goOn();
        EXPECT_TRUE(real::waitUntil([&] { return application.text() == each.text; }));
        EXPECT_TRUE(real::staysTrue([&] { return application.text() == each.text; },
                                    std::chrono::milliseconds(50)));
        EXPECT_LE(application.callCount(),
                  calls + (each.misdeed == Misdeed::stopsAfterInsertion ? 1 : 0));
    }
}

TEST(HostileApplications, LoseNothingThatTheirUserTypedMeanwhile) {
    HostileApplication application(Misdeed::isTypedInto);
    AtspiElement element(std::make_shared<AtspiSession>(), application.object());
    EXPECT_EQ(element.setAttributeValue(selectedText, std::u16string(u"ецщ")),
              AccessibilityError::failure);
    std::u32string text = application.text();
    std::erase_if(text, [](char32_t scalar) { return scalar > 0x400; });
    EXPECT_EQ(text, U"one z three");
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

} // namespace
} // namespace kelvora
