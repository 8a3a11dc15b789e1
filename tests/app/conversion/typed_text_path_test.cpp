// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"
#include "app/conversion/keyboard_guard.h"
#include "app/io/logger.h"
#include "app/io/system_event_poster.h"
#include "core/mapping/input_source_switcher.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace kelvora {
namespace {

/// The path as it runs where keyboards cannot be held back.
class TypedTextPathTest : public testing::Test {
protected:
    TypedTextPathTest() { desktop.keyboard.canHold = false; }

    std::optional<ConversionOutcome> convertTyped(std::u16string_view typed) {
        record(typed);
        return FocusedTextConverter::convertTypedText(request, services);
    }
    void record(std::u16string_view typed) {
        request.typedText->replace(request.typedText->text(), typed);
        desktop.keyboard.posted.clear();
    }

    /// What was posted: "<" for a bare Backspace, else the text.
    std::u16string posted() const {
        std::u16string sequence;
        for (const auto& [time, direction, event] : desktop.keyboard.posted) {
            if (direction == KeyDirection::down) {
                const bool erases = event.keyCode == keyCode::backspace && event.flags == 0;
                sequence += erases ? u"<" : event.text.view();
            }
        }
        return sequence;
    }

    fake::FakeDesktop desktop;
    SystemEventPoster poster{desktop.keyboard, [this] { return desktop.scheduler.now(); }};
    KeyboardGuard keyboard{desktop.keyboard, desktop.windows.focusTarget()};
    Logger logger{desktop.log, "Conversion"};
    ConversionServices services{poster, keyboard, logger};
    ConversionRequest request{
        .mapping = *InputSourceSwitcher::mapping(desktop.layouts, desktop.translator, "us", "ru"),
        .activeSourceIndex = 0,
        .bundleID = "org.example.editor",
        .typedText = std::make_shared<TypedTextBuffer>(),
    };
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
    desktop.at(0.01, [this] { keyboard.noteFocusChange(); });
    desktop.at(0.02, [this] { desktop.keyboard.release(keyCode::leftShift); });
    EXPECT_EQ(convertTyped(u"ghbdtn"), ConversionOutcome::noText());
    EXPECT_EQ(posted(), u"");
    EXPECT_EQ(request.typedText->text(), u"ghbdtn");
}

TEST_F(TypedTextPathTest, TerminalsByIdentifierAndByKind) {
    constexpr const char* trigger = "Trigger: bundleID=<private>, doubleShiftDetected=true";
    constexpr const char* terminal =
        "Terminal: nothing typed since the caret moved. bundleID=<private>";
    constexpr const char* success =
        "Typed-word path success: bundleID=<private>, deleted=6, targetIndex=1";
    struct Case {
        const char* name;
        const char* bundleID;
        ApplicationKind kind;
        std::u16string_view typed;
        ConversionOutcome outcome;
        std::vector<std::string> log;
    };
    constexpr auto ordinary = ApplicationKind::ordinary;
    const auto converted = ConversionOutcome::converted(1);
    const auto noText = ConversionOutcome::noText();
    const Case cases[] = {
        {"word", "org.alacritty", ordinary, u"ghbdtn", converted, {trigger, success}},
        {"not convertible", "org.alacritty", ordinary, u"42", noText, {trigger, terminal}},
        {"by kind", "unknown", ApplicationKind::terminal, u"", noText, {trigger, terminal}},
        {"compared whole", "dev.warp.Warp-Preview", ordinary, u"", noText, {trigger}},
        {"compared with case", "com.apple.terminal", ordinary, u"", noText, {trigger}},
        {"no terminal", "unknown", ApplicationKind::noSelectAll, u"", noText, {trigger}},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        const std::size_t before = desktop.log.lines().size();
        request.bundleID = testCase.bundleID;
        request.applicationKind = testCase.kind;
        record(testCase.typed);
        EXPECT_EQ(FocusedTextConverter::convertFocusedField(request, services), testCase.outcome);
        std::vector<std::string> written = desktop.log.messages("Conversion", LogLevel::info);
        written.erase(written.begin(), written.begin() + static_cast<std::ptrdiff_t>(before));
        EXPECT_EQ(written, testCase.log);
    }
}

} // namespace
} // namespace kelvora
