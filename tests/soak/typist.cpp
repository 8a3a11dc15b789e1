// SPDX-License-Identifier: MIT
#include "tests/soak/typist.h"

#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <array>
#include <chrono>
#include <thread>

namespace kelvora::soak {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t longestLine = 36; // characters; the terminal's line must not wrap
constexpr int linesPerDocument = 8;

constexpr std::array rhythms{
    real::Rhythm{milliseconds(0), milliseconds(0)},
    real::fastRhythm,
    real::Rhythm{milliseconds(10), milliseconds(60)},
    real::personRhythm,
};

} // namespace

Typist::Typist(real::RealDesktop& desktop, std::uint32_t seed)
    : desktop_(desktop), terminal_(desktop, "75x16+0+0"), editor_(desktop, real::EditorKind::gtk),
      terminalPlace_{&terminal_, false, {}, {}}, editorPlace_{&editor_, true, {}, {}},
      random_(seed) {
    real::placeWindow(desktop.display(), editor_.window(),
                      {.x = 0, .y = 520, .width = 900, .height = 420});
    desktop_.keyboard().setSource(real::KeySource::physical);
    static_cast<void>(bringForward(here()));
}

bool Typist::typeWord() {
    ++counts_.words;
    const real::Rhythm rhythm = rhythms.at(static_cast<std::size_t>(upTo(rhythms.size() - 1)));
    desktop_.keyboard().setRhythm(rhythm);
    note("\nevery " + std::to_string(rhythm.longest.count()) + " ms:");
    if (here().line.length() > longestLine && !finishLine()) {
        return false;
    }
    const bool isClicked = oneIn(12);
    if (isClicked && !click()) {
        return false;
    }
    const bool isSwitched = oneIn(15);
    if (isSwitched && !switchApplication()) {
        return false;
    }
    if ((isClicked || isSwitched) && !here().line.isEmpty() && oneIn(2)) {
        // Nothing is known to have been typed: the editor's text is looked at, if no key changes it
        // before the keyboard is held.
        convert();
        std::this_thread::sleep_for(milliseconds(120));
    }
    if (oneIn(10) && !changeLayout()) {
        return false;
    }
    if (!here().line.isEmpty()) {
        press(' ');
    }
    typeLetters();
    if (oneIn(10)) {
        return convertDisturbed();
    }
    pause();
    convertAndTypeOn();
    if (oneIn(6)) {
        convertAndTypeOn();
    }
    return !oneIn(3) || check();
}

bool Typist::check() {
    note("[check]");
    if (!shows(here(), here().line.text())) {
        return fail("the text");
    }
    real::KeyboardState state;
    const bool isKeyboardRight = real::waitUntil(
        [&] {
            state = desktop_.keyboardState();
            return state.layout == nameOf(layout_) && state.pressedKeys.empty() &&
                   state.lockedModifiers == 0;
        },
        std::chrono::seconds(5));
    return isKeyboardRight || fail("the keyboard, in the layout \"" + state.layout + "\", " +
                                   std::to_string(state.pressedKeys.size()) + " keys down,");
}

bool Typist::oneIn(int times) {
    return upTo(times - 1) == 0;
}

int Typist::upTo(int most) {
    return std::uniform_int_distribution<int>(0, most)(random_);
}

void Typist::pause() {
    if (oneIn(2)) {
        const int length = upTo(200);
        note("[" + std::to_string(length) + " ms]");
        std::this_thread::sleep_for(milliseconds(length));
    }
}

void Typist::press(char key) {
    if (key == '\b') {
        here().line.deleteBackward();
    } else {
        here().line.type(key, layout_);
    }
    note(key == '\b' ? "<" : std::string(1, key));
    desktop_.keyboard().type(std::string_view(&key, 1));
}

void Typist::typeLetters() {
    // The first is a letter in both layouts, so that the word tells which one it was typed in.
    for (int left = 1 + upTo(9), isFirst = 1; left > 0; --left, isFirst = 0) {
        char key = letterKeys[static_cast<std::size_t>(upTo(letterKeys.size() - 1))];
        if (isFirst == 0 && oneIn(8)) {
            key = signKeys[static_cast<std::size_t>(upTo(signKeys.size() - 1))];
        } else if (oneIn(10)) {
            key = static_cast<char>(key - 'a' + 'A');
        }
        press(key);
        if (oneIn(15)) {
            slipAndCorrect();
        }
    }
}

void Typist::slipAndCorrect() {
    const int slips = 1 + upTo(2);
    counts_.backspaces += slips;
    for (int slip = 0; slip < slips; ++slip) {
        press(letterKeys[static_cast<std::size_t>(upTo(letterKeys.size() - 1))]);
    }
    for (int slip = 0; slip < slips; ++slip) {
        press('\b');
    }
}

void Typist::convert() {
    // No hand gets from the mouse to the end of a word, or from one double tap to the next, any
    // sooner. What follows a click or a new line the program looks at 250 ms later, and a double
    // tap before it has taken hold of the keyboard for the last one is none.
    std::this_thread::sleep_until(lastBreak_ + milliseconds(300));
    const bool isConverted = here().line.convertLastWord(here().canReadLine, layout_);
    note(isConverted ? "[convert]" : "[convert nothing]");
    ++(isConverted ? counts_.conversions : counts_.nothingToConvert);
    desktop_.keyboard().doubleShift(oneIn(2) ? real::key::leftShift : real::key::rightShift);
    lastBreak_ = std::chrono::steady_clock::now();
}

void Typist::convertAndTypeOn() {
    convert();
    if (oneIn(2)) {
        ++counts_.typedOn;
        if (oneIn(2)) {
            press(' ');
        }
        typeLetters();
    }
}

bool Typist::convertDisturbed() {
    if (!check()) {
        return false;
    }
    ++counts_.disturbed;
    Place& place = here();
    const TypedLine before = place.line;
    const Layout layoutBefore = layout_;
    convert();
    std::this_thread::sleep_for(milliseconds(upTo(150)));
    const bool isClick = oneIn(2);
    if (isClick) {
        clickAt(3, 1); // into the text
    } else {
        isInTerminal_ = !isInTerminal_;
        if (!bringForward(here())) {
            return false;
        }
        here().line.forget();
    }
    // The whole correction, or none of it.
    const auto isUndone = [&] {
        return place.application->text() == place.above + before.text() &&
               real::activeLayout(desktop_.display()) == nameOf(layoutBefore);
    };
    const auto isDone = [&] {
        return place.application->text() == place.above + place.line.text() &&
               real::activeLayout(desktop_.display()) == nameOf(layout_);
    };
    // Longer than any correction lasts.
    std::this_thread::sleep_for(milliseconds(700));
    if (!real::waitUntil([&] { return isDone() || isUndone(); }, std::chrono::seconds(5))) {
        return fail("the text after a disturbed conversion");
    }
    if (!isDone()) {
        ++counts_.abandoned;
        place.line = before;
        layout_ = layoutBefore;
    }
    if (isClick && place.canReadLine) {
        desktop_.keyboard().chord("Control_L+End");
    }
    place.line.forget();
    return check();
}

bool Typist::changeLayout() {
    ++counts_.layoutChanges;
    note("[layout]");
    if (!check()) { // a conversion that still runs would switch the layout later
        return false;
    }
    // The program reads back what it has chosen; no hand is at the layouts before that.
    std::this_thread::sleep_for(milliseconds(100));
    layout_ = other(layout_);
    real::lockLayout(desktop_.display(), static_cast<unsigned>(layout_));
    return true;
}

bool Typist::click() {
    ++counts_.clicks;
    if (!check()) {
        return false;
    }
    clickBesideText();
    here().line.forget();
    return true;
}

bool Typist::switchApplication() {
    ++counts_.applicationSwitches;
    if (!check()) {
        return false;
    }
    isInTerminal_ = !isInTerminal_;
    here().line.forget();
    return bringForward(here());
}

bool Typist::finishLine() {
    ++counts_.lines;
    note("[Enter]");
    if (!check()) {
        return false;
    }
    Place& place = here();
    const std::string expected = place.line.text();
    place.line.clear();
    if (isInTerminal_) {
        lastBreak_ = std::chrono::steady_clock::now();
        return terminal_.acceptLine() == expected || fail("the line that the shell got");
    }
    desktop_.keyboard().tap(real::key::enter);
    lastBreak_ = std::chrono::steady_clock::now();
    place.above += expected + '\n';
    if (!check()) {
        return false;
    }
    if (++place.linesSinceFresh == linesPerDocument) {
        place.linesSinceFresh = 0;
        place.above.clear();
        layout_ = Layout::us;
        return editor_.beginFreshLine() || fail("the cleared document");
    }
    return true;
}

void Typist::clickBesideText() {
    clickAt(8, 9); // the caret stays at the end
}

void Typist::clickAt(int tenthsDown, int tenthsRight) {
    note("[click]");
    const real::WindowFrame frame =
        real::windowFrame(desktop_.display(), here().application->window());
    real::clickAt(desktop_.display(), frame.x + frame.width * tenthsRight / 10,
                  frame.y + frame.height * tenthsDown / 10);
    lastBreak_ = std::chrono::steady_clock::now();
}

bool Typist::bringForward(Place& place) {
    note("[to the " + place.application->name() + "]");
    const bool isInFront = real::activateWindow(desktop_.display(), place.application->window());
    lastBreak_ = std::chrono::steady_clock::now();
    return isInFront || fail("the window in front");
}

bool Typist::shows(const Place& place, const std::string& line) {
    return real::waitUntil([&] { return place.application->text() == place.above + line; });
}

void Typist::note(const std::string& what) {
    constexpr std::size_t kept = 1500;
    done_ += what;
    if (done_.size() > 2 * kept) {
        done_.erase(0, kept);
    }
}

bool Typist::fail(const std::string& what) {
    Place& place = here();
    problem_ = what + " is not as it must be in the " + place.application->name() +
               ": it shows \"" + place.application->text() + "\", expected is \"" + place.above +
               place.line.text() + "\" with the layout \"" + nameOf(layout_) +
               "\"\nDone before:" + done_;
    return false;
}

} // namespace kelvora::soak
