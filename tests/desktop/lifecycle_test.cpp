// SPDX-License-Identifier: MIT
// The program's coming and going in a session.
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

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
    const std::filesystem::path home = desktop_.environment().at("HOME");
    EXPECT_FALSE(std::filesystem::exists(home / ".cache/Kelvora"))
        << "nothing is left of the window";

    Program byUser(desktop_, KELVORA_PROGRAM, Program::Start::byUser);
    EXPECT_TRUE(waitUntil([&] { return showsPreferences(byUser); }));
    EXPECT_EQ(atLogin.process().waitForExit(std::chrono::seconds(5)), 0) << "the newer copy stays";
}

/// An open list or menu has items of its own, which go in another order than the window's.
TEST_F(Lifecycle, EndsInOrderWhateverWasOpenedInItsWindow) {
    const struct {
        const char* name;
        std::vector<const char*> keys;
    } cases[] = {
        {"a list that is closed by a choice", {}},
        {"a list that is closed without one", {"space", "Escape"}},
        {"a list that is open", {"space"}},
        {"a menu that is closed", {"F10", "Right", "Escape"}},
        {"a menu that is open", {"F10"}},
    };
    const auto settings =
        std::filesystem::path(desktop_.environment().at("HOME")) / ".config/kelvora/settings.json";
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        std::filesystem::remove(settings);
        Program program(desktop_, KELVORA_PROGRAM, Program::Start::byUser);
        ASSERT_TRUE(waitUntil([&] { return showsPreferences(program); }));
        for (const char* key : {"Tab", "Tab", "space", "Up", "Return"}) // the interval's list
            desktop_.keyboard().tapNamed(key);
        ASSERT_TRUE(waitUntil(
            [&] { return fileContent(settings).find("sensitivity") != std::string::npos; }));
        for (const char* key : testCase.keys)
            desktop_.keyboard().tapNamed(key);
        desktop_.keyboard().controlWith('q');
        EXPECT_EQ(program.process().waitForExit(std::chrono::seconds(5)), 0) << program.log();
    }
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
