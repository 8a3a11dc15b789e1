// SPDX-License-Identifier: MIT
#include "host/linux/xkb/key_interpreter.h"

#include "tests/host/xkb/keymap_fixture.h"

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-compose.h>

#include <string_view>

namespace kelvora {
namespace {

constexpr std::uint8_t shiftBit = 1;
constexpr std::uint8_t lockBit = 2;
constexpr std::uint8_t controlBit = 4;
constexpr std::uint8_t altBit = 8;
constexpr std::uint8_t level3Bit = 0x80;

class Interpreter : public testing::Test {
protected:
    void useLayouts(const char* layouts, const char* variants = "", const char* options = "") {
        keymap_ = compileKeymap(context_.get(), layouts, variants, options);
        ASSERT_TRUE(keymap_);
        interpreter_.setKeymap(keymap_.get());
    }
    std::optional<InputEvent> key(const char* name, bool isPress, std::uint8_t modifiers = 0,
                                  std::uint32_t group = 0) {
        return interpreter_.interpret({.keycode = xkb_keymap_key_by_name(keymap_.get(), name),
                                       .isPress = isPress,
                                       .modifiers = modifiers,
                                       .group = group});
    }
    std::u16string typed(const char* name, std::uint8_t modifiers = 0, std::uint32_t group = 0) {
        const auto event = key(name, true, modifiers, group);
        return event ? std::u16string(event->text.view()) : u"<none>";
    }

    XkbContextPtr context_ = makeQuietContext();
    XkbComposeTablePtr compose_{xkb_compose_table_new_from_locale(context_.get(), "en_US.UTF-8",
                                                                  XKB_COMPOSE_COMPILE_NO_FLAGS)};
    XkbKeymapPtr keymap_;
    KeyInterpreter interpreter_{compose_.get()};
};

TEST_F(Interpreter, ModifierChangesCarryTheStateAfterThem) {
    useLayouts("us");
    const struct {
        const char* name;
        bool isPress;
        std::uint8_t before;
        KeyCode keyCode;
        EventFlags after;
    } steps[] = {
        {"LFSH", true, 0, 56, eventFlag::shift | eventFlag::leftShiftDevice},
        {"RTSH", true, shiftBit, 60,
         eventFlag::shift | eventFlag::leftShiftDevice | eventFlag::rightShiftDevice},
        // The server's state has only "some Shift": that the other one is held has to be known.
        {"LFSH", false, shiftBit, 56, eventFlag::shift | eventFlag::rightShiftDevice},
        {"RTSH", false, shiftBit, 60, 0},
        {"LCTL", true, 0, 59, eventFlag::control},
        {"LCTL", false, controlBit, 59, 0},
        {"CAPS", true, 0, 57, 0},
        {"CAPS", false, lockBit, 57, eventFlag::capsLock},
        {"LWIN", true, 0, 55, eventFlag::command},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(std::string(step.name) + (step.isPress ? " down" : " up"));
        const auto event = key(step.name, step.isPress, step.before);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->type, EventType::flagsChanged);
        EXPECT_EQ(event->keyCode, step.keyCode);
        EXPECT_EQ(event->flags, step.after);
    }
}

TEST_F(Interpreter, ModifiersAreWhatTheyDoInTheKeymap) {
    useLayouts("de");
    auto event = key("RALT", true);
    EXPECT_EQ(event->keyCode, keyCode::rightOption);
    EXPECT_EQ(event->flags, eventFlag::option);
    event = key("LALT", true);
    EXPECT_EQ(event->flags, eventFlag::command);
    EXPECT_EQ(typed("AD03", level3Bit), u"€");
    for (const auto& [layout, variant] : {std::pair{"us", ""}, {"de", "neo"}, {"fr", "bepo"}}) {
        useLayouts(layout, variant);
        const ModifierRoles roles = ModifierRoles::of(keymap_.get());
        EXPECT_NE(roles.option, 0) << layout;
        EXPECT_NE(roles.command, 0) << layout;
        EXPECT_EQ(roles.option & roles.command, 0) << layout;
    }

    useLayouts("us", "", "ctrl:nocaps,shift:both_capslock");
    EXPECT_EQ(key("CAPS", true)->keyCode, keyCode::leftControl);
    useLayouts("us", "", "caps:backspace");
    EXPECT_EQ(key("CAPS", true)->keyCode, keyCode::backspace);
    useLayouts("us,ru", "", "grp:lshift_toggle");
    event = key("LFSH", true);
    EXPECT_EQ(event->type, EventType::flagsChanged);
    EXPECT_NE(event->keyCode, keyCode::leftShift) << "here it switches the layout";
    EXPECT_EQ(event->flags & eventFlag::shift, 0U);
}

TEST_F(Interpreter, KeysThatChangeRolesWhileDownAreLetGoOf) {
    useLayouts("us");
    EXPECT_EQ(key("LFSH", true)->keyCode, keyCode::leftShift);
    useLayouts("us", "", "grp:lshift_toggle");
    EXPECT_EQ(key("LFSH", false, shiftBit)->flags & eventFlag::shift, 0U);
    useLayouts("us");
    EXPECT_EQ(key("AC01", true)->flags, 0U);
}

TEST_F(Interpreter, TextByGroupLevelAndLocks) {
    useLayouts("us,ru");
    EXPECT_EQ(typed("AC01", shiftBit | lockBit), u"a");
    EXPECT_EQ(typed("AC01", shiftBit, 1), u"Ф");
    EXPECT_EQ(typed("KP7", 0x10), u"7") << "Num Lock";
    EXPECT_EQ(key("KP7", true)->keyCode, keyCode::home) << "no Num Lock";
    EXPECT_EQ(key("AC01", true, altBit)->flags, eventFlag::command);
}

TEST_F(Interpreter, DeadKeysAndComposeGiveTheirTextWithTheLastKey) {
    useLayouts("fr,us");
    EXPECT_EQ(typed("AD11"), u"") << "dead circumflex";
    EXPECT_EQ(typed("AD03"), u"ê");
    EXPECT_EQ(typed("AD03"), u"e");
    EXPECT_EQ(typed("AD11"), u"");
    EXPECT_EQ(typed("AD11"), u"^");
    EXPECT_EQ(typed("AD11"), u"");
    interpreter_.reset();
    EXPECT_EQ(typed("AD03"), u"e") << "a sequence does not outlive a restart";
    // Our own keys are no part of the user's sequence.
    EXPECT_EQ(typed("AD11"), u"");
    EXPECT_TRUE(interpreter_
                    .interpret({.keycode = xkb_keymap_key_by_name(keymap_.get(), "BKSP"),
                                .isPress = true,
                                .isSynthetic = true})
                    ->text.empty());
    EXPECT_EQ(typed("AD03"), u"ê");
}

TEST_F(Interpreter, CaretKeysByWhatTheyDo) {
    useLayouts("us");
    const std::pair<const char*, KeyCode> keys[] = {
        {"RTRN", 36},  {"TAB", 48},  {"ESC", 53},   {"KPEN", 76},  {"HOME", 115}, {"PGUP", 116},
        {"DELE", 117}, {"END", 119}, {"PGDN", 121}, {"LEFT", 123}, {"RGHT", 124}, {"DOWN", 125},
        {"UP", 126},   {"BKSP", 51}, {"KP4", 123},  {"KPDL", 117}};
    for (const auto& [name, code] : keys)
        EXPECT_EQ(key(name, true)->keyCode, code) << name;
    EXPECT_EQ(typed("FK05"), u"");
    EXPECT_EQ(typed("INS"), u"");
    EXPECT_EQ(key("VOL+", true), std::nullopt) << "volume is no typing";
}

} // namespace
} // namespace kelvora
