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
/// "pending" too, "other" is an ordinary one about another text; "window" is a change of the
/// window,
/// "@1" the client whose window has the focus; "grab"; "fence". What comes out is written the same
/// way, with "!" for a change of focus and "|" for a fence passed; a letter whose text was taken
/// away is "_", and "?" asks whether the secret focus is still there.
class Gate {
public:
    Gate() {
        entry_.setConfirm([this] { output_ += '?'; });
    }
    std::string run(const std::string& steps) {
        std::istringstream words(steps);
        for (std::string word; words >> word;) {
            if (std::isdigit(static_cast<unsigned char>(word[0])) != 0)
                advance(SecureEntryGate::Time(std::chrono::milliseconds(std::atoi(word.c_str()))));
            else if (word == "secret")
                entry_.report({FocusSecrecy::secret, true}, now_);
            else if (word == "ordinary")
                entry_.report({FocusSecrecy::ordinary, false}, now_);
            else if (word == "pending")
                entry_.report({FocusSecrecy::pending, false}, now_);
            else if (word == "other")
                entry_.report({FocusSecrecy::ordinary, true}, now_);
            else if (word == "untold")
                entry_.report({FocusSecrecy::untold, false}, now_);
            else if (word == "window")
                gate_.handleWindowChange(now_);
            else if (word == "fence")
                gate_.handleFence(1, now_);
            else if (word == "grab")
                gate_.handleGrab(now_);
            else if (word[0] == '@')
                gate_.handleFocusClient(static_cast<std::uint32_t>(word[1] - '0'), now_);
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
                           .onFencePassed = [this](std::uint8_t) { output_ += '|'; },
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
        {"held until the focus is known to have stayed", "0 ordinary Tab b 249", "Tab"},
        {"and no longer", "0 ordinary Tab b 250", "Tabb"},
        {"nor out of order", "0 ordinary Tab 1 b *c + 251 d -", "Tabbc+d-"},
        {"a key held down is delayed, not stopped", "0 ordinary Tab 30 Tab 60 Tab 90 Tab 120 a 340",
         "TabTabTabTaba"},
        {"a gesture waits for nothing but text", "0 ordinary Tab + 49", "Tab"},
        {"and not for long", "0 ordinary Tab + 50 -", "Tab+-"},
        {"unless text is before it", "0 ordinary Tab a 60 + - 249", "Tab"},
        {"our own shortcuts move nothing", "0 ordinary *^c a", "ca"},
        {"into a password field", "0 ordinary Tab 1 p 3 secret 5 + - q 60 r ^v Back 500", "Tab!"},
        {"by a click, a shortcut, a function key",
         "0 ordinary click p 9 secret 299 ordinary 600 ^l p 609 secret 899 ordinary 1200 F6 p 1209 "
         "secret 1500",
         "click!!_!!F6!"},
        {"by a window", "0 ordinary window p 9 secret 299", "!!"},
        {"by itself", "0 ordinary a 2000 secret b 2100", "a!"},
        {"out of it, without a key: no half words", "0 secret a ordinary b click c 250",
         "!!_clickc"},
        {"out of it, at once", "0 secret Tab 1 a 4 ordinary 5 b 260 c", "!!abc"},
        {"out of it, but late: no half words",
         "0 secret Tab 1 a 270 ordinary 280 b 290 Tab 295 c 550", "!!_Tabc"},
        {"a key that stays in it", "0 secret Tab 1 a 299 b", "!"},
        {"through one into the next field", "0 ordinary Tab 1 p 2 Tab 3 secret a 5 ordinary 299",
         "Tab!!a"},
        {"from one to another", "0 secret Tab a 5 ordinary 6 Tab 7 b 9 secret 299", "!!!"},
        {"what was typed in the old window", "0 ordinary Tab a window b 299", "Tab!b"},
        {"the application moves the focus", "0 ordinary a 1002 other b", "a!b"},
        {"the user does", "0 ordinary a 1000 other b", "ab"},
        {"its application hangs in the background", "0 @1 secret 500 window @2 a 1499 b 1500 c",
         "!!?_"},
        {"but not when it told just before the window changed",
         "0 @1 ordinary 500 secret 505 window @2 a 2000 b", "!!?"},
        {"and not when it has come to the front again",
         "0 @1 secret 500 window @2 600 window @1 2000 a", "!!?!?"},
        {"another window of the same application", "0 @1 secret 500 window @1 a 2000 b", "!!?"},
        {"a menu or a screen lock over it", "0 @1 secret 500 grab a 2000 b 3000 grab c 5000",
         "!!!"},
        {"an answer that takes long", "0 ordinary Tab p 40 pending 200 q 290 ordinary r 291",
         "Tabpqr"},
        {"and is that it is secret", "0 ordinary Tab p 40 pending 200 q 290 secret r 400", "Tab!"},
        {"that takes too long: no half words",
         "0 ordinary a 9 pending b 308 c 309 d 400 ordinary e click f 650", "a!_clickf"},
        {"that never comes", "0 ordinary Tab p 9 pending 309 q 9000 r", "Tab!"},
        {"never, and the user goes elsewhere",
         "0 @1 ordinary 9 pending 500 window @2 a 1499 b 1500 c", "!!_"},
        {"and then accessibility ends", "0 ordinary Tab p 40 pending q untold r", "Tabr"},
        {"answered, but moved on to a secret since",
         "0 ordinary Tab p 9 pending 30 Tab q 40 ordinary pending 99 secret 400", "Tab!"},
        {"moved long after the last key", "0 ordinary a 2000 pending b 2010 other 2011", "a!b"},
        {"our own key is an act, too", "0 ordinary a 2000 *v 2010 other b", "avb"},
        {"and so is Shift", "0 ordinary a 2000 + 2010 other - b", "a+-b"},
        {"accessibility ends", "0 ordinary Tab a untold b", "Tabab"},
        {"accessibility ends in a password field", "0 secret Tab a untold b", "!!b"},
        {"a fence waits for what was before it", "0 ordinary Tab fence a fence b 249 fence 250",
         "Tab|a|b|"},
        {"a fence after secrets", "0 ordinary Tab a fence 5 secret 249 fence 250 fence", "Tab!|||"},
        {"a fence and another window", "0 ordinary Tab a fence window fence", "Tab!||"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Gate().run(test.steps), test.expected) << test.name;
}

} // namespace
} // namespace kelvora
