// SPDX-License-Identifier: MIT
#include "host/linux/xkb/key_interpreter.h"

#include "core/text/encoding.h"
#include "tests/host/xkb/keymap_fixture.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-compose.h>

#include <sstream>

namespace kelvora {
namespace {

/// The real modifiers by a letter each: Shift, Caps Lock, Control, Alt, Num Lock, third level.
constexpr std::string_view modifierLetters = "SKCMN  A";

/// Reads "S+-LFSH": that key comes up while Shift is in effect; "2+" is the second group, "*+" one
/// of our own keys.
RawKey keyOf(std::string_view word, xkb_keymap* keymap) {
    RawKey key{.isPress = true};
    for (; word.substr(1, 1) == "+"; word.remove_prefix(2)) {
        if (word[0] == '2')
            key.group = 1;
        else if (word[0] == '*')
            key.isSynthetic = true;
        else
            key.modifiers |= static_cast<std::uint8_t>(1U << modifierLetters.find(word[0]));
    }
    key.isPress = word[0] != '-';
    key.keycode = xkb_keymap_key_by_name(keymap, word.data() + (key.isPress ? 0 : 1));
    return key;
}

/// "56SL": the key code and the flags, L and R for the left and the right Shift; text after a
/// colon, "~" and "!" for a compose sequence that goes on or breaks off.
std::string described(const std::optional<InputEvent>& event) {
    if (!event)
        return "nothing";
    std::string text = std::to_string(event->keyCode);
    for (const auto& [flag, letter] : {std::pair{eventFlag::shift, 'S'},
                                       {eventFlag::leftShiftDevice, 'L'},
                                       {eventFlag::rightShiftDevice, 'R'},
                                       {eventFlag::control, 'C'},
                                       {eventFlag::option, 'A'},
                                       {eventFlag::command, 'M'},
                                       {eventFlag::capsLock, 'K'}})
        if ((event->flags & flag) != 0)
            text += letter;
    if (event->type == EventType::flagsChanged)
        return text;
    text += ":" + toUtf8(event->text.view());
    return text + (event->composition == Composition::underWay ? "~"
                   : event->composition == Composition::broken ? "!"
                                                               : "");
}

TEST(KeyInterpreter, TellsPositionsModifiersAndText) {
    const struct {
        const char *layouts, *variants, *options, *keys, *expected;
    } cases[] = {
        // The server's state has only "some Shift": that the other one is held has to be known.
        {"us", "", "", "LFSH S+RTSH S+-LFSH S+-RTSH", "56SL 60SLR 56SR 60"},
        {"us", "", "", "LCTL C+-LCTL CAPS K+-CAPS LWIN M+AC01", "59C 59 57 57K 55M 0M:a"},
        {"us", "", "", "S+K+AC01 N+KP7 VOL+ FK05 INS", "0SK:a 89:7 nothing 96: 114:"},
        // The application's own: what was typed before them is over. I166 and I181 are Back and
        // Reload.
        {"us", "", "", "I166 I181 PAST CUT", "65535: 65535: 65535: 65535:"},
        {"us", "", "", "MUTE I172 I232 I233 POWR I150",
         "nothing nothing nothing nothing nothing nothing"},
        {"us", "", "", "-RTSH LFSH S+-RTSH S+-LFSH -LFSH", "nothing 56SL nothing 56 nothing"},
        // Caret keys by what they do, those of the number block among them.
        {"us", "", "", "KP7 HOME KP4 LEFT UP PGDN END", "115: 115: 123: 123: 126: 121: 119:"},
        {"us", "", "", "RTRN TAB ESC DELE BKSP", "36:\r 48:\t 53:\x1B 117:\x7F 51:\b"},
        {"us,ru", "", "", "2+S+AC01 2+AC01", "0S:Ф 0:ф"},
        // Modifiers are what they do in the keymap, and let go of when that changes meanwhile.
        {"us", "", "", "LFSH", "56SL"},
        {"us,ru", "", "grp:lshift_toggle", "S+-LFSH AC01 LFSH", "56 0:a 65535"},
        {"us", "", "ctrl:nocaps", "CAPS", "59C"},
        {"us", "", "caps:backspace", "CAPS", "51:\b"},
        {"de", "neo", "", "RALT A+-RALT LALT", "61A 61 55M"},
        {"de", "", "", "RALT A+AD03", "61A 14A:€"},
        // Dead keys give their text with the last key; our own keys are no part of the sequence.
        {"fr", "", "", "AD11 AD03 AD03 AD11 AD11", "33:~ 14:ê 14:e 33:~ 33:^"},
        {"fr", "", "", "AD11 *+BKSP AD03", "33:~ 51: 14:ê"},
        // What is left of a sequence that is given up, and one key for a ligature, differs.
        {"fr", "", "", "AD11 AC08 AC08 AD11 BKSP", "33:~ 40:! 40:k 33:~ 51:!"},
        {"ara", "", "", "AC01 AB05", "0:ش 11:لا!"},
    };
    const XkbContextPtr context = makeQuietContext();
    const auto compose = loadComposeTable(context.get(), "en_US.UTF-8");
    KeyInterpreter interpreter(compose.get());
    for (const auto& c : cases) {
        const auto keymap = compileKeymap(context.get(), c.layouts, c.variants, c.options);
        interpreter.setKeymap(keymap.get());
        std::istringstream words(c.keys);
        std::string told;
        for (std::string word; words >> word;)
            told += described(interpreter.interpret(keyOf(word, keymap.get()))) + " ";
        EXPECT_EQ(told, std::string(c.expected) + " ") << c.keys;
    }
}

} // namespace
} // namespace kelvora
