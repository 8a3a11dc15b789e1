// SPDX-License-Identifier: MIT
// The program ends in the middle of a correction.
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"

#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace kelvora::real {

namespace {

TEST(Faults, TheKeyboardIsUsableAfterACrashInTheMiddleOfACorrection) {
    RealDesktop desktop;
    const KeyboardState before = desktop.keyboardState();
    Terminal terminal(desktop);
    desktop.keyboard().setSource(KeySource::physical);
    for (const int signal : {SIGTERM, SIGKILL}) {
        SCOPED_TRACE(signal);
        const std::string word = "ghbdtnghbdtnghbdtn";
        std::optional<Program> program(std::in_place, desktop, KELVORA_PROGRAM);
        ASSERT_TRUE(terminal.beginFreshLine());
        desktop.keyboard().type(word);
        ASSERT_TRUE(terminal.showsText(word));
        desktop.keyboard().doubleShift();
        ASSERT_TRUE(waitUntil([&] { return terminal.text().size() < word.size() - 2; }));
        program->process().sendSignal(signal);
        ASSERT_TRUE(program->process().waitForExit(std::chrono::seconds(5)));

        // The next start takes back what a killed one could not.
        program.emplace(desktop, KELVORA_PROGRAM);
        EXPECT_TRUE(waitUntil([&] { return desktop.keyboardState().pressedKeys.empty(); },
                              std::chrono::seconds(2)));
        EXPECT_TRUE(desktop.keyboardState().keymap == before.keymap);
        ASSERT_TRUE(terminal.beginFreshLine());
        desktop.keyboard().type("ghbdtn");
        desktop.keyboard().doubleShift();
        EXPECT_TRUE(terminal.showsText("привет")) << terminal.text();
    }
}

} // namespace

} // namespace kelvora::real
