// SPDX-License-Identifier: MIT
#include "host/linux/secure_entry_gate.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <string>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

/// A gate in virtual time. Steps are words: a number is the time in milliseconds of what follows;
/// letters are keys that type themselves, "Tab", "Back", "F6", "^c" (with Control), "+" and "-"
/// (Shift down, up), "*x" (one of our own), "click"; "secret", "ordinary", "untold" are reports,
/// "other" is an ordinary one about another text; "window" is a change of the window; "fence".
/// What comes out is written the same way, with "!" for a change of focus and "|" for a fence
/// passed; a letter whose text was taken away is "_".
class Gate {
public:
    std::string run(const std::string& steps) {
        std::istringstream words(steps);
        for (std::string word; words >> word;) {
            if (std::isdigit(static_cast<unsigned char>(word[0])) != 0)
                advance(SecureEntryGate::Time(std::chrono::milliseconds(std::atoi(word.c_str()))));
            else if (word == "secret")
                entry_.report({FocusSecrecy::secret, true}, now_);
            else if (word == "ordinary")
                entry_.report({FocusSecrecy::ordinary, false}, now_);
            else if (word == "other")
                entry_.report({FocusSecrecy::ordinary, true}, now_);
            else if (word == "untold")
                entry_.report({FocusSecrecy::untold, false}, now_);
            else if (word == "window")
                gate_.handleWindowChange(now_);
            else if (word == "fence")
                gate_.handleFence(now_);
            else
                gate_.handleEvent(event(word), now_);
        }
        return output_;
    }

private:
    void advance(SecureEntryGate::Time time) {
        while (timer_ && *timer_ <= time) {
            now_ = *std::exchange(timer_, std::nullopt);
            gate_.handleTimer(now_);
        }
        now_ = time;
    }

    static InputEvent event(const std::string& word) {
        InputEvent event;
        if (word == "click") {
            event.type = EventType::leftMouseDown;
        } else if (word == "+" || word == "-") {
            event = {.type = EventType::flagsChanged,
                     .keyCode = keyCode::leftShift,
                     .flags = word == "+" ? eventFlag::shift : 0};
        } else if (word == "Tab") {
            event = {.keyCode = keyCode::tab, .text = EventText(u"\t")};
        } else if (word == "Back") {
            event = {.keyCode = keyCode::backspace, .text = EventText(u"\b")};
        } else if (word == "F6") {
            event.keyCode = 97;
        } else {
            event.text = EventText(std::u16string(1, static_cast<char16_t>(word.back())));
            if (word.front() == '^')
                event.flags = eventFlag::control;
            if (word.front() == '*')
                event.sourceUserData = 1;
        }
        return event;
    }

    void deliver(const InputEvent& event) {
        if (event.type == EventType::leftMouseDown)
            output_ += "click";
        else if (event.type == EventType::flagsChanged)
            output_ += event.flags != 0 ? '+' : '-';
        else if (event.keyCode == keyCode::tab)
            output_ += "Tab";
        else if (event.keyCode == keyCode::backspace)
            output_ += "Back";
        else if (event.text.empty())
            output_ += event.keyCode == 97 ? "F6" : "_";
        else
            output_ += static_cast<char>(event.text.view().front());
    }

    std::string output_;
    SecureEntryGate::Time now_{};
    std::optional<SecureEntryGate::Time> timer_;
    SecureEntry entry_;
    SecureEntryGate gate_{&entry_,
                          {.deliver = [this](const InputEvent& event) { deliver(event); },
                           .onFocusChanged = [this] { output_ += '!'; },
                           .onFencePassed = [this] { output_ += '|'; },
                           .setTimer = [this](SecureEntryGate::Time time) { timer_ = time; }}};
};

TEST(SecureEntryGate, LetsThroughWhatIsNotSecret) {
    const struct {
        const char* name;
        const char* steps;
        const char* expected;
    } cases[] = {
        {"nobody follows the focus", "0 a Tab b fence window c", "aTabb|!c"},
        {"typing is not held back", "0 ordinary a b Back 1 c", "abBackc"},
        {"held until the focus is known to have stayed", "0 ordinary Tab b 49", "Tab"},
        {"and no longer", "0 ordinary Tab b 50", "Tabb"},
        {"nor out of order", "0 ordinary Tab 1 b *c + 51 d -", "Tabbc+d-"},
        {"a key held down is delayed, not stopped", "0 ordinary Tab 30 Tab 60 Tab 90 Tab 120 a 140",
         "TabTabTabTaba"},
        {"our own shortcuts move nothing", "0 ordinary *^c a", "ca"},
        {"into a password field", "0 ordinary Tab 1 p 3 secret 5 + - q 60 r ^v Back 200", "Tab!"},
        {"by a click, a shortcut, a function key",
         "0 ordinary click p 9 secret 99 ordinary 200 ^l p 209 secret 299 ordinary 400 F6 p 409 "
         "secret 500",
         "click!!_!!F6!"},
        {"by a window", "0 ordinary window p 9 secret 99", "!!"},
        {"by itself", "0 ordinary a 2000 secret b 2100", "a!"},
        {"out of it, without a key: no half words", "0 secret a ordinary b click c 50",
         "!!_clickc"},
        {"out of it, at once", "0 secret Tab 1 a 4 ordinary 5 b 60 c", "!!abc"},
        {"out of it, but late: no half words", "0 secret Tab 1 a 70 ordinary 80 b 90 Tab 95 c 150",
         "!!_Tabc"},
        {"a key that stays in it", "0 secret Tab 1 a 99 b", "!"},
        {"through one into the next field", "0 ordinary Tab 1 p 2 Tab 3 secret a 5 ordinary 99",
         "Tab!!a"},
        {"from one to another", "0 secret Tab a 5 ordinary 6 Tab 7 b 9 secret 99", "!!!"},
        {"what was typed in the old window", "0 ordinary Tab a window b 99", "Tab!b"},
        {"the application moves the focus", "0 ordinary a 1002 other b", "a!b"},
        {"the user does", "0 ordinary a 1000 other b", "ab"},
        {"its application hangs in the background", "0 secret 500 window a 1499 b 1500 c", "!!_"},
        {"but not when it told just before the window changed",
         "0 ordinary 500 secret 505 window a 2000 b", "!!"},
        {"accessibility ends", "0 ordinary Tab a untold b", "Tabab"},
        {"accessibility ends in a password field", "0 secret Tab a untold b", "!!b"},
        {"a fence waits for what was before it", "0 ordinary Tab fence a fence b 49 fence 50",
         "Tab|a|b|"},
        {"a fence after secrets", "0 ordinary Tab a fence 5 secret 49 fence 50 fence", "Tab!|||"},
        {"a fence and another window", "0 ordinary Tab a fence window fence", "Tab|!|"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Gate().run(test.steps), test.expected) << test.name;
}

} // namespace
} // namespace kelvora
