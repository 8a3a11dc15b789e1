// SPDX-License-Identifier: MIT
// Typed text belongs to the place it was typed in.
#include "tests/desktop/live_desktop.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"

#include <memory>
#include <optional>
#include <string>

namespace kelvora::real {

namespace {

class Focus : public LiveDesktopTest {
protected:
    /// Another window, in front of everything; its text must stay what the test types into it.
    [[nodiscard]] std::unique_ptr<Terminal> otherWindow() {
        return std::make_unique<Terminal>(desktop(), "40x5+900+700");
    }
};

TEST_P(Focus, AMovedCaretEndsWhatWasTyped) {
    for (const char* const keyName : {"Left", "Home", "Up"}) {
        SCOPED_TRACE(keyName);
        beginFreshLine();
        keyboard().type("ghbdtn");
        keyboard().tapNamed(keyName);
        keyboard().tapNamed("End");
        // The line editor's history shows the same line for Up, as there is none.
        expectTypedTextForgotten();
    }
}

TEST_P(Focus, AClickEndsWhatWasTyped) {
    keyboard().type("ghbdtn");
    ASSERT_TRUE(application().showsText("ghbdtn"));
    const WindowFrame frame = windowFrame(desktop().display(), application().window());
    clickAt(desktop().display(), frame.x + frame.width / 2, frame.y + frame.height / 2);
    expectTypedTextForgotten();
}

TEST_P(Focus, AnotherWindowInBetweenEndsWhatWasTyped) {
    std::string before;
    keyboard().type("ghbdtn");
    ASSERT_TRUE(application().showsText("ghbdtn"));
    {
        const std::unique_ptr<Terminal> other = otherWindow();
        ASSERT_TRUE(activateWindow(desktop().display(), application().window()));
        expectTypedTextForgotten();
        EXPECT_EQ(other->receivedBytes(), "");
        before = application().text();

        ASSERT_TRUE(activateWindow(desktop().display(), other->window()));
        keyboard().type("vbh");
        keyboard().doubleShift();
        EXPECT_TRUE(other->showsText("мир")) << other->text();
    }
    ASSERT_TRUE(activateWindow(desktop().display(), application().window()));
    expectEnd(before, "ru");
}

TEST_P(Focus, MovesAwayInTheMiddleOfACorrection) {
    const std::unique_ptr<Terminal> other = otherWindow();
    beginFreshLine();
    const std::string word = "ghbdtnghbdtnghbdtnghbdtn";
    keyboard().type(word);
    ASSERT_TRUE(application().showsText(word));
    keyboard().doubleShift();
    ASSERT_TRUE(waitUntil([&] { return application().text().size() < word.size() - 2; }));
    ASSERT_TRUE(activateWindow(desktop().display(), other->window()));

    EXPECT_TRUE(
        staysTrue([&] { return other->receivedBytes().empty(); }, std::chrono::milliseconds(1500)))
        << "the other window got what was meant for the first";
    EXPECT_TRUE(desktop().keyboardState().pressedKeys.empty());
    // And the next correction is none the worse for it.
    beginFreshLine();
    keyboard().type("ghbdtn");
    keyboard().doubleShift();
    expectEnd("привет", "ru");
}

TEST_P(Focus, AClickInTheMiddleOfACorrectionWaitsForItsEnd) {
    // Empty lines, so that a click into the window moves an editor's caret.
    for (int line = 0; line < 40; ++line) {
        keyboard().tap(key::enter);
    }
    const bool isTerminal = dynamic_cast<Terminal*>(&application()) != nullptr;
    const std::string above(isTerminal ? 0 : 40, '\n');
    const std::string word = "ghbdtnghbdtnghbdtn";
    keyboard().type(word);
    ASSERT_TRUE(application().showsText(above + word));
    keyboard().doubleShift();
    ASSERT_TRUE(waitUntil([&] { return application().text().size() < above.size() + 16; }));
    const WindowFrame frame = windowFrame(desktop().display(), application().window());
    clickAt(desktop().display(), frame.x + frame.width / 2, frame.y + frame.height / 2);
    expectEnd(above + "приветприветпривет", "ru");
    if (!isTerminal) { // it has come, only later
        keyboard().type("z");
        EXPECT_TRUE(
            waitUntil([&] { return application().text().find("я\n") != std::string::npos; }));
    }
}

TEST_P(Focus, KeysThatAnotherProgramHasGrabbedAreNobodysText) {
    std::optional<ForeignKeyboardGrab> grab(std::in_place, desktop());
    keyboard().type("ghbdtn");
    expectNothingConverted("", "us"); // with the grab still held
    grab.reset();
    expectNothingConverted("", "us");

    keyboard().type("ghbdtn");
    grab.emplace(desktop());
    grab.reset();
    expectTypedTextForgotten();

    beginFreshLine();
    keyboard().type("ghbdtn");
    keyboard().doubleShift();
    expectEnd("привет", "ru");
}

KELVORA_IN_EVERY_APPLICATION(Focus);

} // namespace

} // namespace kelvora::real
