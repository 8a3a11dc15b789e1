// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

#include <algorithm>

namespace kelvora {
namespace {

/// The path as it runs where keyboards cannot be held back.
class TypedTextPathTest : public PathTest {
protected:
    TypedTextPathTest() { desktop.keyboard.canHold = false; }

    std::optional<ConversionOutcome> convertTyped(std::u16string_view typed) {
        request.typedText->replace(request.typedText->text(), typed);
        beginCase();
        return FocusedTextConverter::convertTypedText(request, services());
    }
};

TEST_F(TypedTextPathTest, ErasesTheLastWordAndTypesItsConversion) {
    struct Case {
        const char* name;
        std::u16string_view typed;
        std::optional<int> target;
        std::u16string_view posted;
        std::u16string_view after;
    };
    const Case cases[] = {
        {"the last of several, and what follows it", u"ok ghbdtn  ", 1, u"<<<<<<<<привет  ",
         u"ok привет  "},
        {"into the first layout", u"руддщ", 0, u"<<<<<hello", u"hello"},
        {"a character of two units is erased by one press", u"ghbdtn😀", 1, u"<<<<<<<привет😀",
         u"привет😀"},
        {"nothing typed", u"", std::nullopt, u"", u""},
        {"digits convert to themselves", u"2024", std::nullopt, u"", u"2024"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        const int readsBefore = desktop.keyboard.modifierStateReads;
        const double started = desktop.scheduler.now();
        const auto outcome = convertTyped(testCase.typed);
        const bool waited = desktop.keyboard.modifierStateReads != readsBefore;
        EXPECT_EQ(outcome, testCase.target
                               ? std::optional(ConversionOutcome::converted(*testCase.target))
                               : std::nullopt);
        EXPECT_EQ(posted(), testCase.posted);
        EXPECT_EQ(request.typedText->text(), testCase.after);
        EXPECT_EQ(waited, testCase.target.has_value()) << "modifiers matter only to a conversion";
        const auto presses = std::ranges::count(testCase.posted, u'<');
        EXPECT_NEAR(desktop.scheduler.now() - started,
                    testCase.target ? 0.016 * static_cast<double>(presses) + 0.02 : 0, 1e-9);
    }
}

TEST_F(TypedTextPathTest, WaitsForTheTriggersShiftButNotForEver) {
    for (const auto& [releasedAfter, firstPress] : {std::pair{0.1, 0.1}, {0.9, 0.3}}) {
        desktop.keyboard.press(keyCode::leftShift);
        desktop.at(releasedAfter, [&] { desktop.keyboard.release(keyCode::leftShift); });
        const double started = desktop.scheduler.now();
        ASSERT_TRUE(convertTyped(u"ghbdtn"));
        EXPECT_NEAR(desktop.keyboard.posted.front().time - started, firstPress, 0.006);
        desktop.run();
    }
}

TEST_F(TypedTextPathTest, NewerContentOfTheBufferWins) {
    desktop.at(0.05, [this] { request.typedText->record(u"x"); });
    EXPECT_EQ(convertTyped(u"ghbdtn"), ConversionOutcome::converted(1));
    EXPECT_EQ(request.typedText->text(), u"ghbdtnx");

    desktop.at(0.05, [this] { request.typedText->reset(); });
    EXPECT_EQ(convertTyped(u"ghbdtn"), ConversionOutcome::converted(1));
    EXPECT_EQ(request.typedText->text(), u"");
}

TEST_F(TypedTextPathTest, FocusThatMovedBeforeTheFirstPressGetsNothing) {
    desktop.keyboard.press(keyCode::leftShift);
    desktop.at(0.01, [this] { keyboard->noteFocusChange(); });
    desktop.at(0.02, [this] { desktop.keyboard.release(keyCode::leftShift); });
    EXPECT_EQ(convertTyped(u"ghbdtn"), ConversionOutcome::noText());
    EXPECT_EQ(posted(), u"");
    EXPECT_EQ(request.typedText->text(), u"ghbdtn");
}

} // namespace
} // namespace kelvora
