// SPDX-License-Identifier: MIT
#include "tests/host/x11/x11_rig.h"
#include "tests/support/real_desktop/keyboard_state.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelvora {
namespace {

using real::KeyboardState;
using real::readKeyboardState;

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

TEST(X11Posting, TextIsExactAndTheKeyboardIsLeftAsFound) {
    struct Case {
        const char* name;
        const char* layouts;
        unsigned group;
        unsigned locks;
        std::u16string_view text;
    };
    const std::vector<Case> cases{
        {"letters of the active layout", "us,ru", 0, 0, u"Hello, World"},
        {"letters of the other layout", "us,ru", 0, 0, u"Привет, мир!"},
        {"both at once", "us,ru", 1, 0, u"aЯbЮ?,."},
        {"Caps Lock", "us,ru", 0, real::capsLockBit, u"aBвГ"},
        {"Num Lock", "us,ru", 0, real::numLockBit, u"aB1вГ2"},
        {"both locks", "us,ru", 1, real::capsLockBit | real::numLockBit, u"aBвГ"},
        {"third layout active", "us,ru,de", 2, 0, u"zyÜЪ"},
        {"third level", "us,de", 0, 0, u"a€@{ß}"},
        {"no layout has it", "us", 0, 0, u"aЖ中b"},
        {"more than one batch of spare keys", "us", 0, 0, u"абвгдеёжзийклмнопрст"},
        {"outside the first plane", "us,ru", 1, 0, u"я\U0001F600я\U0001D400"},
        {"malformed", "us", 0, 0, u"a\xD800z"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        X11Rig rig(test.layouts);
        ASSERT_TRUE(rig.selectLayout(test.group));
        real::lockModifiers(rig.xlib(), test.locks);
        const KeyboardState before = readKeyboardState(rig.xlib());
        rig.onWorker([&] { postKey(rig.services().eventPoster, 0, 0, test.text); });
        std::u16string expected(test.text);
        std::ranges::replace(expected, u'\xD800', u'\xFFFD');
        EXPECT_TRUE(rig.textBecomes(expected)) << "typed something else";
        EXPECT_EQ(readKeyboardState(rig.xlib()), before);
    }
}

TEST(X11Posting, ShortcutsGoByLetter) {
    struct Case {
        const char* layouts;
        unsigned group;
    };
    // The key at the US A is Q under French and the one at the US C is X under bepo: neither may be
    // pressed. Nor may a key of a layout without Latin letters: what it means is a guess then.
    for (const Case& test :
         {Case{"us", 0}, Case{"fr", 0}, Case{"us(dvorak)", 0}, Case{"fr(bepo)", 0}, Case{"de", 0},
          Case{"tr(f)", 0}, Case{"us,ru", 1}, Case{"fr(bepo),ru", 1}, Case{"ru,gr,fr", 1}}) {
        SCOPED_TRACE(test.layouts);
        X11Rig rig(test.layouts);
        ASSERT_TRUE(rig.selectLayout(test.group));
        const std::string layout = readKeyboardState(rig.xlib()).layout;
        rig.keyboard().press(real::key::leftShift); // held by the user: not part of the shortcut
        EXPECT_FALSE(readKeyboardState(rig.xlib()).pressedKeys.empty()); // the server has it
        rig.onWorker([&] {
            for (const KeyCode key : {keyCode::a, keyCode::c, keyCode::v})
                postKey(rig.services().eventPoster, key, eventFlag::command, u"");
        });
        EXPECT_TRUE(rig.becomes([&] { return rig.editor().commands() == "4+a 4+c 4+v "; }))
            << rig.editor().commands();
        rig.keyboard().release(real::key::leftShift);
        EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
        EXPECT_EQ(readKeyboardState(rig.xlib()).layout, layout);
    }
}

TEST(X11Posting, ArrowsCarryTheirOwnModifiersOnly) {
    struct Case {
        const char* name;
        unsigned locks;
        unsigned held;
        const char* expected;
    };
    constexpr unsigned none = 0;
    for (const Case& test :
         {Case{"nothing", 0, none, "0+Left 1+Left 0+Right "},
          Case{"Caps Lock", real::capsLockBit, none, "2+Left 3+Left 2+Right "},
          Case{"Num Lock", real::numLockBit, none, "16+Left 17+Left 16+Right "},
          Case{"Control is held", 0, real::key::control, "0+Left 1+Left 0+Right "},
          Case{"Shift is held", real::capsLockBit, real::key::leftShift,
               "2+Left 3+Left 2+Right "}}) {
        SCOPED_TRACE(test.name);
        X11Rig rig;
        real::lockModifiers(rig.xlib(), test.locks);
        if (test.held != none)
            rig.keyboard().press(test.held);
        EXPECT_EQ(readKeyboardState(rig.xlib()).pressedKeys.empty(), test.held == none);
        rig.onWorker([&] {
            postKey(rig.services().eventPoster, keyCode::leftArrow, 0, u"");
            postKey(rig.services().eventPoster, keyCode::leftArrow, eventFlag::shift, u"");
            postKey(rig.services().eventPoster, keyCode::rightArrow, 0, u"");
        });
        EXPECT_TRUE(rig.becomes([&] { return rig.editor().commands() == test.expected; }))
            << rig.editor().commands();
        if (test.held != none)
            rig.keyboard().release(test.held);
        EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
        EXPECT_EQ(readKeyboardState(rig.xlib()).lockedModifiers, test.locks);
    }
}

TEST(X11Posting, ALayoutChangedBetweenTwoPostsIsUsed) {
    X11Rig rig("us,ru");
    rig.onWorker([&] { postKey(rig.services().eventPoster, 0, 0, u"аб"); });
    rig.setLayouts("de,gr");
    rig.onWorker([&] { postKey(rig.services().eventPoster, 0, 0, u"zßλ"); });
    EXPECT_TRUE(rig.textBecomes(u"абzßλ"));
}

TEST(X11Posting, AServerThatGoesAwayIsNoCrash) {
    X11Rig rig;
    const auto tap = rig.services().eventSource.createTap(0, [](const InputEvent&) {});
    ASSERT_TRUE(tap);
    tap->setEnabled(true);
    auto event = rig.services().eventPoster.createKeyEvent(keyCode::backspace, KeyDirection::down);
    rig.killServer();
    rig.onWorker([&] {
        rig.services().eventPoster.post(*event);
        static_cast<void>(rig.services().eventPoster.modifierState());
        static_cast<void>(rig.services().eventPoster.holdKeyboard({1}));
    });
    EXPECT_TRUE(rig.becomes([&] { return rig.isServerGone(); })) << "told once, by a notice";
    EXPECT_FALSE(rig.services().eventPoster.createKeyEvent(0, KeyDirection::down));
    EXPECT_FALSE(rig.services().permissions.isAccessibilityTrusted());
}

} // namespace
} // namespace kelvora
