// SPDX-License-Identifier: MIT
// Sessions in which the program cannot work, or not fully, and says so.
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gmock/gmock.h>
#include <string>

namespace kelvora::real {

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::Gt;
using testing::Lt;
using testing::Optional;

constexpr const char* aboutTheDisplay = "[Dd]isplay|DISPLAY|X server";

// 128 and more would be a signal's.
const auto failureExitCode = Optional(AllOf(Gt(0), Lt(126)));

TEST(Faults, NoDisplay) {
    RealDesktop desktop;
    for (const char* const display : {"", ":64123", "nonsense"}) {
        SCOPED_TRACE(display);
        Environment environment = desktop.environment();
        environment["DISPLAY"] = display;
        if (environment["DISPLAY"].empty()) {
            environment.erase("DISPLAY");
        }
        Program program(desktop, KELVORA_PROGRAM, Program::Start::asItIs, environment);
        EXPECT_THAT(program.process().waitForExit(std::chrono::seconds(5)), failureExitCode);
        EXPECT_THAT(program.log(), ContainsRegex(aboutTheDisplay));
        EXPECT_FALSE(program.isListening());
    }
}

TEST(Faults, TheServerGoesAway) {
    RealDesktop desktop;
    Program program(desktop, KELVORA_PROGRAM);
    desktop.killServer();
    EXPECT_THAT(program.process().waitForExit(std::chrono::seconds(5)), failureExitCode);
    EXPECT_THAT(program.log(), ContainsRegex(aboutTheDisplay));
}

TEST(Faults, AServerThatHidesXTest) {
    RealDesktop desktop;
    const XServer server({"-extension", "XTEST"});
    Environment environment = desktop.environment();
    environment["DISPLAY"] = server.display();
    Program program(desktop, KELVORA_PROGRAM, Program::Start::asItIs, environment);
    EXPECT_TRUE(waitUntil([&] { return program.logContains("Accessibility permission required"); }))
        << program.log();
    program.process().sendSignal(SIGTERM);
    EXPECT_EQ(program.process().waitForExit(std::chrono::seconds(5)), 0) << program.log();
}

TEST(Faults, OneLayoutOnlyThenTwo) {
    RealDesktop desktop("us");
    Terminal terminal(desktop);
    Program program(desktop, KELVORA_PROGRAM);
    desktop.keyboard().setSource(KeySource::physical);
    ASSERT_TRUE(terminal.beginFreshLine());
    desktop.keyboard().type("ghbdtn");
    ASSERT_TRUE(terminal.showsText("ghbdtn"));
    const std::string received = terminal.receivedBytes();
    desktop.keyboard().doubleShift();
    EXPECT_TRUE(waitUntil([&] {
        return program.logContains("Add two keyboard layouts in System Settings.");
    })) << program.log();
    EXPECT_TRUE(staysTrue([&] { return terminal.receivedBytes() == received; },
                          std::chrono::milliseconds(600)));

    desktop.setLayouts("us,ru");
    ASSERT_TRUE(terminal.beginFreshLine());
    desktop.keyboard().type("ghbdtn");
    desktop.keyboard().doubleShift();
    EXPECT_TRUE(terminal.showsText("привет")) << terminal.text();
    EXPECT_EQ(activeLayout(desktop.display()), "ru");
}

TEST(Faults, AWaylandSessionIsNamed) {
    RealDesktop desktop;
    Environment environment = desktop.environment();
    environment["WAYLAND_DISPLAY"] = "wayland-0";
    environment["XDG_SESSION_TYPE"] = "wayland";
    Program program(desktop, KELVORA_PROGRAM, Program::Start::asItIs, environment);
    EXPECT_TRUE(waitUntil([&] { return program.logContains("Wayland"); }, std::chrono::seconds(5)))
        << program.log();
}

TEST(Faults, WhatWasTypedIsNotInTheLog) {
    RealDesktop desktop;
    Terminal terminal(desktop);
    Program program(desktop, KELVORA_PROGRAM);
    desktop.keyboard().setSource(KeySource::physical);
    ASSERT_TRUE(terminal.beginFreshLine());
    desktop.keyboard().type("ghbdtn");
    desktop.keyboard().doubleShift();
    ASSERT_TRUE(terminal.showsText("привет")) << terminal.text();
    EXPECT_FALSE(program.logContains("ghbdtn") || program.logContains("привет")) << program.log();
}

} // namespace

} // namespace kelvora::real
