// SPDX-License-Identifier: MIT
#include "core/text/encoding.h"
#include "tests/host/x11/x11_rig.h"
#include "tests/support/real_desktop/keyboard_state.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora {
namespace {

using real::capsLockBit;
using real::numLockBit;
using real::readKeyboardState;

struct Case {
    const char* layouts;
    unsigned group;
    unsigned locks;
    unsigned held; ///< a key that the user holds, or 0
    std::string expected;
};

void postKey(EventPoster& poster, KeyCode keyCode, EventFlags flags, std::u16string_view text) {
    for (const KeyDirection direction : {KeyDirection::down, KeyDirection::up}) {
        auto event = poster.createKeyEvent(keyCode, direction);
        ASSERT_TRUE(event);
        event->flags = flags;
        event->text = EventText(text);
        event->sourceUserData = 1;
        poster.post(*event);
    }
}

/// Posts with the keyboard in the state of the case; it must be in that state afterwards.
void expectPosted(const Case& c, const std::function<void(EventPoster&)>& post,
                  const std::function<std::string(X11Rig&)>& result) {
    SCOPED_TRACE(std::string(c.layouts) + " " + std::to_string(c.group) + " " + c.expected);
    X11Rig rig(c.layouts);
    ASSERT_TRUE(rig.selectLayout(c.group));
    real::lockModifiers(rig.xlib(), c.locks);
    if (c.held != 0)
        rig.keyboard().press(c.held);
    const auto before = readKeyboardState(rig.xlib());
    EXPECT_EQ(before.pressedKeys.empty(), c.held == 0);
    rig.onWorker([&] { post(rig.services().eventPoster); });
    EXPECT_TRUE(rig.becomes([&] { return result(rig) == c.expected; })) << result(rig);
    if (c.held != 0)
        rig.keyboard().release(c.held);
    auto after = readKeyboardState(rig.xlib());
    EXPECT_TRUE(after.pressedKeys.empty());
    after.pressedKeys = before.pressedKeys;
    EXPECT_EQ(after, before);
}

TEST(X11Posting, TextIsExactAndTheKeyboardIsLeftAsFound) {
    const Case cases[] = {
        {"us,ru", 1, capsLockBit | numLockBit, 0, "aB1вГ2"},
        {"us,de", 0, 0, 0, "a€@{ß}"},             // the third level
        {"us", 0, 0, 0, "абвгдеёжзийклмнопрс中"}, // more than one batch of spare keys
        {"us,ru", 1, 0, 0, "я😀я𝐀"},
    };
    for (const Case& c : cases)
        expectPosted(
            c, [&](EventPoster& poster) { postKey(poster, 0, 0, toUtf16(c.expected)); },
            [](X11Rig& rig) { return toUtf8(rig.text()); });
}

TEST(X11Posting, ShortcutsGoByLetterAndArrowsCarryTheirOwnModifiersOnly) {
    // The key at the US A is Q under French and the one at the US C is X under bepo: neither may be
    // pressed. Nor may a key of a layout without Latin letters: what it means is a guess then.
    // What the user holds is no part of it.
    const Case cases[] = {
        {"us", 0, 0, real::key::leftShift, "4+a 4+c 4+v 0+Left 1+Left "},
        {"fr", 0, 0, real::key::control, "4+a 4+c 4+v 0+Left 1+Left "},
        {"fr(bepo),ru", 1, capsLockBit, 0, "6+A 6+C 6+V 2+Left 3+Left "},
        {"ru,gr,fr", 1, numLockBit, 0, "20+a 20+c 20+v 16+Left 17+Left "},
    };
    const auto post = [](EventPoster& poster) {
        for (const KeyCode key : {keyCode::a, keyCode::c, keyCode::v})
            postKey(poster, key, eventFlag::command, u"");
        postKey(poster, keyCode::leftArrow, 0, u"");
        postKey(poster, keyCode::leftArrow, eventFlag::shift, u"");
    };
    for (const Case& c : cases)
        expectPosted(c, post, [](X11Rig& rig) { return rig.editor().commands(); });
}

} // namespace
} // namespace kelvora
