// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

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

    const Outcome converted = ConversionOutcome::converted(1);
};

TEST_F(TypedTextPathTest, ErasesTheLastWordAndTypesItsConversion) {
    const double started = desktop.scheduler.now();
    EXPECT_EQ(convertTyped(u"ok ghbdtn😀 "), converted);
    EXPECT_EQ(posted(), u"<<<<<<<<привет😀 ") << "a character of two units takes one press";
    EXPECT_EQ(request.typedText->text(), u"ok привет😀 ");
    EXPECT_NEAR(desktop.scheduler.now() - started, 8 * 0.016 + 0.02, 1e-9);
}

TEST_F(TypedTextPathTest, LeavesWhatBackspaceErasesDifferentlyInEachApplication) {
    EXPECT_EQ(convertTyped(u"ghbdtn\U0001F1FA\U0001F1E6"), std::nullopt) << "a flag";
    EXPECT_EQ(posted(), u"");
    EXPECT_EQ(convertTyped(u"\U0001F1FA\U0001F1E6 ghbdtn"), converted) << "before the word";
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
    EXPECT_EQ(convertTyped(u"ghbdtn"), converted);
    EXPECT_EQ(request.typedText->text(), u"ghbdtnx");

    desktop.at(0.05, [this] { request.typedText->reset(); });
    EXPECT_EQ(convertTyped(u"ghbdtn"), converted);
    EXPECT_EQ(request.typedText->text(), u"");
}

} // namespace
} // namespace kelvora
