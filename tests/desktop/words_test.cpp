// SPDX-License-Identifier: MIT
// What a person types in the wrong layout, and what stands there after the double Shift.
#include "tests/desktop/live_desktop.h"
#include "tests/support/real_desktop/terminal.h"

#include <array>

namespace kelvora::real {

namespace {

class Words : public LiveDesktopTest {};

struct Case {
    const char* name;
    const char* typed;    // keys by their English letters; \b is Backspace
    unsigned typedIn = 0; // 0: English, 1: Russian
    const char* expected;
    const char* layoutAfter;
};

constexpr std::array cases{
    Case{"a word", "ghbdtn", 0, "привет", "ru"},
    Case{"a word typed in Russian", "hello", 1, "hello", "us"},
    Case{"after other words", "hello, dear ghbdtn", 0, "hello, dear привет", "ru"},
    Case{"one space behind it", "ghbdtn ", 0, "привет ", "ru"},
    Case{"several spaces behind it", "ok ghbdtn   ", 0, "ok привет   ", "ru"},
    Case{"a capital and a comma", "Ghbdtn?", 0, "Привет,", "ru"},
    Case{"letters on punctuation keys", ",jkmijq", 0, "большой", "ru"},
    Case{"a quotation mark and a semicolon", "'nj;", 0, "этож", "ru"},
    Case{"a letter with Shift on a digit key", "rfr ltkf&", 0, "rfr дела?", "ru"},
    Case{"capital letters on punctuation keys", "{JHJIJ", 0, "ХОРОШО", "ru"},
    Case{"digits behind the letters", "ghbdtn2024", 0, "привет2024", "ru"},
    Case{"corrected while typing", "ghbddd\b\btnn\b", 0, "привет", "ru"},
    Case{"corrected back into the word before", "ghbdtn vb\b\b\b", 0, "привет", "ru"},
    Case{"one letter", "z", 0, "я", "ru"},
    Case{"longer than one chunk of text", "ghtdsctyysqghtdsctyysqghtdsctyysq", 0,
         "превысенныйпревысенныйпревысенный", "ru"},
};

TEST_P(Words, TheLastWordIsRepaired) {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        beginFreshLine();
        lockLayout(desktop().display(), row.typedIn);
        keyboard().type(row.typed);
        keyboard().doubleShift();
        expectEnd(row.expected, row.layoutAfter);
    }
}

TEST_P(Words, TheProgramInTheTerminalGetsWhatIsShown) {
    auto* const terminal = dynamic_cast<Terminal*>(&application());
    if (terminal == nullptr) {
        return; // an editor's text is its own
    }
    keyboard().type("echo ghbdtn");
    keyboard().doubleShift();
    expectEnd("echo привет", "ru");
    EXPECT_EQ(terminal->acceptLine(), "echo привет");
}

TEST_P(Words, WordByWordAsTheSentenceIsTyped) {
    keyboard().type("Ghbdtn?");
    keyboard().doubleShift();
    expectEnd("Привет,", "ru");
    keyboard().type(" rfr ltkf&");
    expectEnd("Привет, как дела?", "ru");
}

TEST_P(Words, ASecondDoubleShiftTurnsItBack) {
    keyboard().type("ghbdtn");
    keyboard().doubleShift();
    expectEnd("привет", "ru");
    keyboard().doubleShift();
    expectEnd("ghbdtn", "us");
    keyboard().doubleShift(key::rightShift);
    expectEnd("привет", "ru");
}

TEST_P(Words, NothingToConvertLeavesEverythingAlone) {
    expectNothingConverted("", "us");
    keyboard().type("2024");
    expectNothingConverted("2024", "us");
    beginFreshLine();
    keyboard().type("   ");
    expectNothingConverted("   ", "us");
    beginFreshLine();
    keyboard().type("gh\b\b");
    expectNothingConverted("", "us");
}

TEST_P(Words, OneTapOrATapWithAnotherKeyIsNoTrigger) {
    keyboard().type("ghbdtn");
    keyboard().tap(key::leftShift);
    keyboard().type("a");
    keyboard().tap(key::leftShift);
    expectEnd("ghbdtna", "us");
}

KELVORA_IN_EVERY_APPLICATION(Words);

} // namespace

} // namespace kelvora::real
