// SPDX-License-Identifier: MIT
// The program's icon and menu in panels that come and go, as real ones do.
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"
#include "tests/ui/docked_icon.h"
#include "tests/ui/status_notifier_panel.h"

#include <gmock/gmock.h>

#include <optional>
#include <tuple>

namespace kelvora::real {

namespace {

using testing::ElementsAre;

class Panel : public testing::Test {
protected:
    bool isDocked() { return hasDockedIcon(desktop.display(), program->process().pid()); }
    void startProgram() { program.emplace(desktop, KELVORA_PROGRAM); }
    std::unique_ptr<ChildProcess> tray() {
        return std::make_unique<ChildProcess>(std::vector<std::string>{"trayer"},
                                              ChildProcess::Options{desktop.environment()});
    }

    RealDesktop desktop;
    std::optional<Program> program;
};

TEST_F(Panel, TheMenuSaysWhatIsOnAndDoesWhatItSays) {
    StatusNotifierPanel panel(desktop.busAddress());
    startProgram();
    ASSERT_TRUE(panel.waitForItem());
    EXPECT_EQ(panel.title(), "Kelvora");
    EXPECT_GE(panel.iconCount(), 4U);
    const auto menuWith = [](const char* enableItem) {
        return ElementsAre(enableItem, "-", "Preferences… Control+,", "Check for Updates…", "-",
                           "Quit Kelvora Control+Q");
    };
    EXPECT_THAT(panel.menu(), menuWith("[x] Enable Kelvora"));
    panel.choose("[x] Enable Kelvora");
    EXPECT_TRUE(waitUntil([&] { return program->logContains("Disabled"); })) << program->log();
    EXPECT_THAT(panel.menu(), menuWith("[ ] Enable Kelvora"));

    panel.choose("Quit Kelvora Control+Q");
    EXPECT_EQ(program->process().waitForExit(defaultDeadline), 0);
}

TEST_F(Panel, ThePreferencesAreOneWindowThatComesToTheFront) {
    StatusNotifierPanel panel(desktop.busAddress());
    startProgram();
    ASSERT_TRUE(panel.waitForItem());
    const auto isInFront = [this](WindowId window) {
        return waitUntil([&] { return activeWindow(desktop.display()) == window; });
    };
    const auto shown = [this] {
        return windowOfProcess(desktop.display(), program->process().pid());
    };
    panel.choose("Preferences… Control+,");
    ASSERT_TRUE(waitUntil([&] { return shown().has_value(); }));
    const WindowId window = *shown();
    EXPECT_TRUE(isInFront(window));
    const WindowFrame frame = windowFrame(desktop.display(), window);
    EXPECT_EQ(frame.width, 540);
    EXPECT_EQ(frame.height, 680);

    // The window manager holds back whatever comes up while the user types elsewhere.
    Terminal terminal(desktop);
    ASSERT_TRUE(activateWindow(desktop.display(), terminal.window()));
    desktop.keyboard().type("a");
    panel.choose("Preferences… Control+,");
    EXPECT_TRUE(isInFront(window));

    placeWindow(desktop.display(), window, {90, 60, 520, 560});
    ASSERT_TRUE(waitUntil([&] { return windowFrame(desktop.display(), window).width == 520; }));
    const WindowFrame placed = windowFrame(desktop.display(), window);
    desktop.keyboard().chord("Alt_L+F4");
    ASSERT_TRUE(waitUntil([&] { return !shown(); }));
    ASSERT_TRUE(activateWindow(desktop.display(), terminal.window()));
    desktop.keyboard().type("b");
    panel.choose("Preferences… Control+,");
    EXPECT_TRUE(isInFront(window)) << "another window, or behind";
    const WindowFrame again = windowFrame(desktop.display(), window);
    EXPECT_EQ(std::tie(again.x, again.y, again.width, again.height),
              std::tie(placed.x, placed.y, placed.width, placed.height));
}

TEST_F(Panel, AnIconForWhateverPanelIsThere) {
    startProgram(); // with none at all
    auto panel = std::make_unique<StatusNotifierPanel>(desktop.busAddress());
    ASSERT_TRUE(panel->waitForItem()) << "a panel that came late";
    panel.reset();
    panel = std::make_unique<StatusNotifierPanel>(desktop.busAddress());
    EXPECT_TRUE(panel->waitForItem()) << "a panel that came again";
    EXPECT_FALSE(isDocked());
}

TEST_F(Panel, AnIconForATrayOnTheDisplay) {
    startProgram();
    for (const char* const panel : {"that came late", "that came again"}) {
        SCOPED_TRACE(panel);
        const auto shown = tray();
        ASSERT_TRUE(waitUntil([&] { return isDocked(); }));
    }
    EXPECT_TRUE(program->process().isRunning());
}

TEST_F(Panel, TheBusIsPreferredWhereAPanelOffersBoth) {
    const auto shown = tray();
    startProgram();
    StatusNotifierPanel panel(desktop.busAddress());
    EXPECT_TRUE(panel.waitForItem());
    EXPECT_TRUE(staysTrue([&] { return !isDocked(); }, std::chrono::seconds(2)));
}

} // namespace

} // namespace kelvora::real
