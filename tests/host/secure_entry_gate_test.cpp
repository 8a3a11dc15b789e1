// SPDX-License-Identifier: MIT
#include "host/linux/secure_entry_gate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
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
    std::string run(const std::string& steps) {
        static const std::map<std::string, FocusReport> reports{
            {"secret", {FocusSecrecy::secret, true}},
            {"ordinary", {FocusSecrecy::ordinary, false}},
            {"other", {FocusSecrecy::ordinary, true}},
            {"pending", {FocusSecrecy::pending, false}},
            {"untold", {FocusSecrecy::untold, false}}};
        entry_.setConfirm([this] { output_ += '?'; });
        std::istringstream words(steps);
        for (std::string word; words >> word;) {
            if (std::isdigit(static_cast<unsigned char>(word[0])) != 0)
                advance(SecureEntryGate::Time(std::chrono::milliseconds(std::stoi(word))));
            else if (reports.contains(word))
                entry_.report(reports.at(word), now_);
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

    static const std::map<std::string, InputEvent>& named() {
        static const std::map<std::string, InputEvent> events{
            {"click", {.type = EventType::leftMouseDown}},
            {"+",
             {.type = EventType::flagsChanged,
              .keyCode = keyCode::leftShift,
              .flags = eventFlag::shift}},
            {"-", {.type = EventType::flagsChanged, .keyCode = keyCode::leftShift}},
            {"Tab", {.keyCode = keyCode::tab, .text = EventText(u"\t")}},
            {"Back", {.keyCode = keyCode::backspace, .text = EventText(u"\b")}},
            {"F6", {.keyCode = 97}}};
        return events;
    }
    static InputEvent event(const std::string& word) {
        if (named().contains(word))
            return named().at(word);
        InputEvent event;
        event.text = EventText(std::u16string(1, static_cast<char16_t>(word.back())));
        event.flags = word.front() == '^' ? eventFlag::control : 0;
        event.sourceUserData = word.front() == '*' ? 1 : 0;
        return event;
    }
    void deliver(const InputEvent& event) {
        const auto name = std::ranges::find_if(named(), [&](const auto& each) {
            return each.second.type == event.type && each.second.keyCode == event.keyCode &&
                   each.second.flags == event.flags;
        });
        if (name != named().end())
            output_ += name->first;
        else
            output_ += event.text.empty() ? '_' : static_cast<char>(event.text.view().front());
    }

    std::string output_;
    SecureEntryGate::Time now_{};
    std::optional<SecureEntryGate::Time> timer_;
    SecureEntry entry_;
    SecureEntryGate gate_{&entry_,
                          {.deliver = [this](const InputEvent& event) { deliver(event); },
                           .onFocusChanged = [this](FocusChange /*change*/) { output_ += '!'; },
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
        {"a key held down", "0 ordinary Tab 30 Tab 60 Tab 90 Tab 120 a 340", "TabTabTabTaba"},
        {"a gesture waits for nothing but text", "0 ordinary Tab + 49", "Tab"},
        {"and not for long", "0 ordinary Tab + 50 -", "Tab+-"},
        {"unless text is before it", "0 ordinary Tab a 60 + - 249", "Tab"},
        {"our own shortcuts move nothing", "0 ordinary *^c a", "ca"},
        {"into a password field", "0 ordinary Tab 1 p 3 secret 5 + - q 60 r ^v Back 500", "Tab!"},
        {"by a click", "0 ordinary click p 9 secret 299 ordinary", "click!!"},
        {"by a shortcut", "0 ordinary ^l p 9 secret 299 ordinary", "l!!"},
        {"by a function key", "0 ordinary F6 p 9 secret 299 ordinary", "F6!!"},
        {"by a window", "0 ordinary window p 9 secret 299", "!!"},
        {"by itself", "0 ordinary a 2000 secret b 2100", "a!"},
        {"out of it", "0 secret a ordinary b click c 250", "!!_clickc"},
        {"out of it, at once", "0 secret Tab 1 a 4 ordinary 5 b 260 c", "!!abc"},
        {"and late", "0 secret Tab 1 a 270 ordinary 280 b 290 Tab 295 c 550", "!!_Tabc"},
        {"a key that stays in it", "0 secret Tab 1 a 299 b", "!"},
        {"through one", "0 ordinary Tab 1 p 2 Tab 3 secret a 5 ordinary 299", "Tab!!a"},
        {"from one to another", "0 secret Tab a 5 ordinary 6 Tab 7 b 9 secret 299", "!!!"},
        {"what was typed in the old window", "0 ordinary Tab a window b 299", "Tab!b"},
        {"the application moves the focus", "0 ordinary a 1002 other b", "a!b"},
        {"the user does", "0 ordinary a 1000 other b", "ab"},
        {"hangs behind", "0 @1 secret 500 window @2 a 1499 b 1500 c", "!!?_"},
        {"told just before", "0 @1 ordinary 500 secret 505 window @2 a 2000 b", "!!?"},
        {"in front again", "0 @1 secret 500 window @2 600 window @1 2000 a", "!!?!?"},
        {"another window of the same application", "0 @1 secret 500 window @1 a 2000 b", "!!?"},
        {"a menu over it", "0 @1 secret 500 grab a 2000 b 3000 grab c 5000", "!!!"},
        {"a late answer", "0 ordinary Tab p 40 pending 200 q 290 ordinary r 291", "Tabpqr"},
        {"secret, late", "0 ordinary Tab p 40 pending 200 q 290 secret r 400", "Tab!"},
        {"too late", "0 ordinary a 9 pending b 308 c 309 d 400 ordinary e click f 650",
         "a!_clickf"},
        {"that never comes", "0 ordinary Tab p 9 pending 309 q 9000 r", "Tab!"},
        {"never, left", "0 @1 ordinary 9 pending 500 window @2 a 1499 b 1500 c", "!!_"},
        {"never, ended", "0 ordinary Tab p 40 pending q untold r", "Tabr"},
        {"moved on", "0 ordinary Tab p 9 pending 30 Tab q 40 ordinary pending 99 secret 400",
         "Tab!"},
        {"moved long after", "0 ordinary a 2000 pending b 2010 other 2011", "a!b"},
        {"our own key is an act, too", "0 ordinary a 2000 *v 2010 other b", "avb"},
        {"and so is Shift", "0 ordinary a 2000 + 2010 other - b", "a+-b"},
        {"accessibility ends", "0 ordinary Tab a untold b", "Tabab"},
        {"ends in a password", "0 secret Tab a untold b", "!!b"},
        {"a fence waits", "0 ordinary Tab fence a fence b 249 fence 250", "Tab|a|b|"},
        {"a fence after secrets", "0 ordinary Tab a fence 5 secret 249 fence 250 fence", "Tab!|||"},
        {"a fence and another window", "0 ordinary Tab a fence window fence", "Tab!||"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Gate().run(test.steps), test.expected) << test.name;
}

} // namespace
} // namespace kelvora
