// SPDX-License-Identifier: MIT
#include "core/text/encoding.h"
#include "host/linux/x11/x11_posting_marks.h"
#include "tests/host/x11/x11_rig.h"
#include "tests/support/real_desktop/keyboard_state.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <thread>
#include <xcb/record.h>

namespace kelvora {
namespace {

using namespace contract;
using real::KeySource;

struct Case {
    const char *name, *steps, *text, *otherText, *recorded; ///< the last three: regular expressions
    friend void PrintTo(const Case& row, std::ostream* stream) { *stream << row.name; }
};

/// A person and a program at one keyboard. Steps are words: "q" and "w" are keys struck, "+w" and
/// "-w" one that goes down and up, "+S" and "-S" the same of Shift, ".." a while; "[" and "]" begin
/// and end a hold, ":ab" posts; "=ab" tells what the editor shows by then; "other" moves the focus
/// to the other editor, "pointer" has it follow the pointer, which goes "away" from both; "own",
/// "menu" and "brief" are grabs of the focused editor, of the other one, and for a moment, "free"
/// ends them; "off" and "on" switch the tap, "ended" makes the server end it; from "xtest" on the
/// keys are another program's; "failed" and "good" tell the state of the hold.
class X11Hold : public testing::TestWithParam<std::tuple<KeySource, Case>> {
protected:
    X11Hold() {
        rig.keyboard().setSource(std::get<0>(GetParam()));
        tap->setEnabled(true);
        rig.services().workspace.setOnFocusChanged(
            [this](FocusChange /*change*/) { recorded += '!'; });
    }
    ~X11Hold() override { rig.services().workspace.setOnFocusChanged(nullptr); }

    void take(const std::string& word) {
        const std::map<std::string, std::function<void()>> actions{
            {"[", [this] { rig.onWorker([this, to = workspace.focusTarget()] { begin(to); }); }},
            {"]", [this] { hold.reset(); }},
            {"failed", [this] { EXPECT_TRUE(hold->hasFailed()); }},
            {"good", [this] { EXPECT_FALSE(hold->hasFailed()); }},
            {"on", [this] { tap->setEnabled(true); }},
            {"off", [this] { tap->setEnabled(false); }},
            {"xtest", [this] { rig.keyboard().setSource(KeySource::synthetic); }},
            {"ended", [this] { endRecording(); }},
            {"other", [this] { rig.focusOtherEditor(); }},
            {"own", [this] { rig.editor().grabKeyboard(); }},
            {"menu", [this] { rig.other().grabKeyboard(); }},
            {"brief", [this] { grabForAMoment(); }},
            {"click", [this] { rig.click(); }},
            {"pointer", [this] { followPointer(); }},
            {"away", [this] { movePointer(500); }},
            {"free", [this] { rig.editor().ungrabKeyboard(), rig.other().ungrabKeyboard(); }},
            {"..", [] {}}};
        const KeyCode key = word.back() == 'S'   ? keyCode::leftShift
                            : word.back() == 'q' ? keyQ
                                                 : keyW;
        if (actions.contains(word))
            actions.at(word)();
        else if (word[0] == ':')
            rig.onWorker([&] { post(toUtf16(word.substr(1))); });
        else if (word[0] == '=')
            EXPECT_TRUE(rig.textBecomes(toUtf16(word.substr(1)))) << word;
        else if (word.size() == 1)
            rig.strike(key);
        else
            word[0] == '+' ? rig.press(key) : rig.release(key);
        if (word.size() > 1 && word[0] != '-')
            rig.rest();
    }
    void begin(FocusTarget target) {
        hold = rig.services().eventPoster.holdKeyboard(target);
        EXPECT_TRUE(hold->settle());
    }
    void followPointer() {
        movePointer(50); // to where the other editor lies above the first
        XSetInputFocus(rig.xlib(), PointerRoot, RevertToPointerRoot, CurrentTime);
        XSync(rig.xlib(), False);
    }
    void movePointer(int place) {
        XWarpPointer(rig.xlib(), 0, DefaultRootWindow(rig.xlib()), 0, 0, 0, 0, place, place);
        XSync(rig.xlib(), False);
    }
    void grabForAMoment() {
        rig.other().grabKeyboard();
        menu = std::jthread([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
            rig.other().ungrabKeyboard();
        });
    }
    /// Takes the tap's RECORD context from it; it is the first resource of its client.
    void endRecording() {
        const XcbConnectionPtr connection = connectX11(DisplayString(rig.xlib()));
        const std::uint32_t mask = xcb_get_setup(connection.get())->resource_id_mask;
        for (std::uint32_t client = 1; client < 128; ++client)
            xcb_record_free_context(connection.get(), client * (mask + 1));
        const XcbPtr<xcb_get_input_focus_reply_t> done(xcb_get_input_focus_reply(
            connection.get(), xcb_get_input_focus(connection.get()), nullptr));
        EXPECT_TRUE(rig.becomes([this] { return !tap->isEnabled(); }));
    }
    void post(std::u16string_view text) {
        auto event = rig.services().eventPoster.createKeyEvent(0, KeyDirection::down);
        event->text = EventText(text);
        event->sourceUserData = 1;
        rig.services().eventPoster.post(*event);
    }

    X11Rig rig;
    Workspace& workspace = rig.services().workspace;
    std::string recorded; ///< the user's text as the tap delivers it; "!" for a change of the focus
    std::unique_ptr<EventTap> tap = rig.services().eventSource.createTap(
        eventMaskBit(EventType::keyDown), [this](const InputEvent& event) {
            if (event.sourceUserData == 0)
                recorded += toUtf8(event.text.view());
        });
    std::unique_ptr<KeyboardHold> hold;
    std::jthread menu;
};

TEST_P(X11Hold, KeysComeExactlyAndToWhomTheyWereMeant) {
    const Case& expected = std::get<1>(GetParam());
    std::istringstream words(expected.steps);
    for (std::string word; words >> word;)
        take(word);
    const auto matches = [](const std::string& text, const char* pattern) {
        return std::regex_match(text, std::regex(pattern));
    };
    EXPECT_TRUE(rig.becomes([&] {
        return matches(toUtf8(rig.text()), expected.text) &&
               matches(toUtf8(rig.otherText()), expected.otherText) &&
               matches(recorded, expected.recorded);
    })) << toUtf8(rig.text())
        << ' ' << toUtf8(rig.otherText()) << ' ' << recorded;
    EXPECT_TRUE(real::readKeyboardState(rig.xlib()).pressedKeys.empty());
}

const Case cases[] = {
    // The hold is made for the user who typed last: each of these begins with a key.
    {"ShiftHeldThroughoutIsNowhereStuck", "q +S [ :ab w =qab ] w -S w xtest +S w -S w", "qabWWwWw",
     "", "qWWwWw"},
    {"ShiftThatComesUp", "q +S [ :ab -S w ]", "qabw", "", "qw"},
    {"ShiftThatGoesDown", "q [ :ab +S w ] q -S q", "qabWQq", "", "qWQq"},
    {"KeysDownBeforeUpAfter", "q +w [ :ab -w +q ] -q w", "qw+abqw", "", "qw+qw"},
    {"Repeats", "q [ :ab q +w .. .. .. .. .. -w q :cd ]", "qabcdqw{4,}q", "", "qqw{4,}q"},
    {"FocusTaken", "q [ :ab other :cd w ]", "qabcd", "w", "q!*w"},
    {"KeyboardTakenForAMoment", "q [ :ab brief :cd good ]", "qabcd", "", "q!*"},
    {"KeyboardTakenForGood", "q [ :ab menu :cd failed free :ef ]", "qab", "", "q!*"},
    // What is typed into another program's grab is nobody's text.
    {"Menu", "q menu q free w", "qw", "q", "q!!w"},
    {"MenuThatWasOpenBefore", "off menu on q free w", "w", "q", "!*w"},
    {"NoTap", "q .. off [ :ab good ] w", "qabw", "", "q"},
    {"TapThatTheServerEnds", "q ended w on [ :ab ] q", "qwabq", "", "q!q"},
    // What an application takes for itself in answer to text is still typed into its text.
    {"Completions", "q own w [ :ab good ] free w menu q free", "qwabw", "q", "qww!!"},
    {"CompletionsInTheMiddle", "q [ :ab own :cd good ] free w", "qabcdw", "", "qw"},
    {"Prompt", "q click own w [ :ab good ] free q", "qwabq", "", "q!!q"},
    {"PromptBeforeItsKeyComesUp", "+q click -q own w free q", "q+wq", "", "q+!!q"},
    {"FocusThatFollowsThePointer", "q pointer q .. away w", "q", "q", "q!+q!+w"},
};
INSTANTIATE_TEST_SUITE_P(Each, X11Hold,
                         testing::Combine(testing::Values(KeySource::physical,
                                                          KeySource::synthetic),
                                          testing::ValuesIn(cases)),
                         [](const auto& each) {
                             return std::get<1>(each.param).name +
                                    std::string(std::get<0>(each.param) == KeySource::physical
                                                    ? "Physical"
                                                    : "Synthetic");
                         });

TEST(X11PostingMarks, WaitForTheirOwnFence) {
    X11PostingMarks marks;
    const std::uint8_t late = marks.nextFence();
    const std::uint8_t fence = marks.nextFence();
    marks.fencePassed(late);
    EXPECT_FALSE(marks.waitForFence(fence, std::chrono::milliseconds(0)));
    marks.fencePassed(fence);
    EXPECT_TRUE(marks.waitForFence(fence, std::chrono::milliseconds(0)));
}

} // namespace
} // namespace kelvora
