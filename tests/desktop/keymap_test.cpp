// SPDX-License-Identifier: MIT
// Layouts other than the two, and layouts that change.
#include "tests/desktop/live_desktop.h"
#include "tests/support/real_desktop/wait_until.h"

#include <array>
#include <string>

namespace kelvora::real {

namespace {

class Keymap : public LiveDesktopTest {
protected:
    void TearDown() override {
        desktop().setLayouts("us,ru");
        lockLayout(desktop().display(), 0);
        LiveDesktopTest::TearDown();
    }
};

TEST_P(Keymap, AThirdLayoutIsActive) {
    desktop().setLayouts("us,ru,de");
    expectKeymapOf(desktop().keyboardState());
    beginFreshLine();
    lockLayout(desktop().display(), 2);
    keyboard().type("ghbdtn");
    ASSERT_TRUE(application().showsText("ghbdtn"));
    keyboard().doubleShift();
    expectEnd("привет", "ru");
}

TEST_P(Keymap, ChangesInTheMiddleOfACorrection) {
    struct Case {
        const char* name;
        const char* layouts;
        const char* option;
        const char* layoutAfter; // the one the program switches to, when there still is one
    };
    constexpr std::array cases{
        Case{"another meaning for one key", "us,ru", "compose:rctrl", "ru"},
        Case{"a layout between the two", "us,de,ru", "", "ru"},
        Case{"the target layout is gone", "us", "", "us"},
    };
    const std::string word = "ghbdtnghbdtnghbdtnghbdtn";
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        desktop().setLayouts("us,ru");
        beginFreshLine();
        keyboard().type(word);
        ASSERT_TRUE(application().showsText(word));
        keyboard().doubleShift();
        ASSERT_TRUE(waitUntil([&] { return application().text().size() < word.size() - 2; }));
        desktop().setLayouts(row.layouts, row.option);
        expectKeymapOf(desktop().keyboardState());
        expectEnd("приветприветприветпривет", row.layoutAfter);
    }
}

KELVORA_IN_EVERY_APPLICATION(Keymap);

} // namespace

} // namespace kelvora::real
