// SPDX-License-Identifier: MIT
// The program's coming and going in a session.
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <gmock/gmock.h>
#include <string>

namespace kelvora::real {

namespace {

constexpr const char* title = "Kelvora Preferences";

class Lifecycle : public testing::Test {
protected:
    bool showsPreferences(Program& program) {
        const auto window = windowOfProcess(desktop_.display(), program.process().pid());
        return window && windowTitle(desktop_.display(), *window) == title &&
               activeWindow(desktop_.display()) == *window;
    }

    RealDesktop desktop_;
};

TEST_F(Lifecycle, OnlyAUserIsShownThePreferences) {
    Program atLogin(desktop_, KELVORA_PROGRAM);
    EXPECT_TRUE(
        staysTrue([&] { return !windowOfProcess(desktop_.display(), atLogin.process().pid()); },
                  std::chrono::milliseconds(500)));
    ASSERT_EQ(runTool(desktop_, {"gdbus", "call", "--session", "--dest=org.kelvora.Kelvora",
                                 "--object-path=/org/kelvora/Kelvora",
                                 "--method=org.freedesktop.Application.Activate", "@a{sv} {}"}),
              0);
    EXPECT_TRUE(waitUntil([&] { return showsPreferences(atLogin); }));

    Program byUser(desktop_, KELVORA_PROGRAM, Program::Start::byUser);
    EXPECT_TRUE(waitUntil([&] { return showsPreferences(byUser); }));
    EXPECT_EQ(atLogin.process().waitForExit(std::chrono::seconds(5)), 0) << "the newer copy stays";
}

TEST_F(Lifecycle, TwoCopiesMakeOneCorrection) {
    Terminal terminal(desktop_);
    desktop_.keyboard().setSource(KeySource::physical);
    Program older(desktop_, KELVORA_PROGRAM);
    Program newer(desktop_, KELVORA_PROGRAM);
    // At once: the older copy may still be on its way out.
    ASSERT_TRUE(terminal.beginFreshLine());
    desktop_.keyboard().type("ghbdtn");
    desktop_.keyboard().doubleShift();
    EXPECT_TRUE(terminal.showsText("привет")) << terminal.text();
    EXPECT_EQ(older.process().waitForExit(std::chrono::seconds(5)), 0);
    EXPECT_TRUE(newer.process().isRunning());
    desktop_.keyboard().doubleShift();
    EXPECT_TRUE(terminal.showsText("ghbdtn")) << terminal.text();
}

} // namespace

} // namespace kelvora::real
