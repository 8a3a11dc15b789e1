// SPDX-License-Identifier: MIT
#pragma once

#include "tests/soak/typed_line.h"
#include "tests/support/real_desktop/editor.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/terminal.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <string>

namespace kelvora::soak {

/// How often each thing was done.
struct Counts {
    int words = 0;
    int conversions = 0;
    int nothingToConvert = 0; ///< a double tap in a terminal that nothing was typed in since
    int typedOn = 0;          ///< keys pressed while a conversion ran
    int disturbed = 0;        ///< a click or another window while a conversion ran
    int abandoned = 0;        ///< of these, conversions that were not made
    int backspaces = 0;
    int clicks = 0;
    int layoutChanges = 0;
    int applicationSwitches = 0;
    int lines = 0;
};

/// A person who types in a terminal and in an editor, and the text that must come of it. What the
/// person does is random, and the same for the same seed.
class Typist {
public:
    Typist(real::RealDesktop& desktop, std::uint32_t seed);

    /// Types a word and does what comes to mind around it. False when a text or the keyboard is not
    /// as it must be; `problem` says which.
    [[nodiscard]] bool typeWord();
    /// Waits until everything is as it must be.
    [[nodiscard]] bool check();

    [[nodiscard]] const Counts& counts() const { return counts_; }
    /// Empty when there is none.
    [[nodiscard]] const std::string& problem() const { return problem_; }

private:
    struct Place {
        real::TextApplication* application;
        bool canReadLine;  ///< tells the program its text
        std::string above; ///< the finished lines, as far as they stay visible to `text`
        TypedLine line;
        int linesSinceFresh = 0;
    };

    [[nodiscard]] Place& here() { return isInTerminal_ ? terminalPlace_ : editorPlace_; }
    [[nodiscard]] bool oneIn(int times);
    [[nodiscard]] int upTo(int most);
    void pause();

    void press(char key);
    void typeLetters();
    void slipAndCorrect();
    /// Taps Shift twice; the model follows at once, as every key pressed from now on must be in the
    /// new layout.
    void convert();
    void convertAndTypeOn();
    [[nodiscard]] bool convertDisturbed();
    [[nodiscard]] bool changeLayout();
    [[nodiscard]] bool click();
    [[nodiscard]] bool switchApplication();
    [[nodiscard]] bool finishLine();
    void clickBesideText();
    void clickAt(int tenthsDown, int tenthsRight);
    [[nodiscard]] bool bringForward(Place& place);

    [[nodiscard]] bool shows(const Place& place, const std::string& line);
    void note(const std::string& what);
    [[nodiscard]] bool fail(const std::string& what);

    real::RealDesktop& desktop_;
    real::Terminal terminal_;
    real::Editor editor_;
    Place terminalPlace_;
    Place editorPlace_;
    bool isInTerminal_ = true;
    Layout layout_ = Layout::us;
    std::chrono::steady_clock::time_point lastBreak_;
    std::mt19937 random_;
    Counts counts_;
    std::string done_; // the last of it, for `problem_`
    std::string problem_;
};

} // namespace kelvora::soak
