// SPDX-License-Identifier: MIT
#include "host/linux/desktop/settings_page.h"

#include "tests/host/desktop/temporary_directory.h"
#include "tests/support/fake_desktop/recording_log.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <csignal>
#include <utility>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

constexpr const char* prefix = "x-apple.systempreferences:com.apple.preference.security?";

TEST(SettingsPages, CommandsOfTheRunningDesktop) {
    const struct {
        const char* desktops;
        const char* anchor;
        std::vector<SettingsCommand> commands;
    } cases[] = {
        {"ubuntu:GNOME", "Privacy_Accessibility", {{"gnome-control-center", "universal-access"}}},
        {"KDE",
         "Privacy_ListenEvent",
         {{"systemsettings", "kcm_keyboard"}, {"systemsettings5", "kcm_keyboard"}}},
        {"X-Cinnamon", "Privacy_ListenEvent", {{"cinnamon-settings", "keyboard"}}},
        {"XFCE", "Privacy_Accessibility", {{"xfce4-accessibility-settings"}}},
        {"MATE", "Privacy_ListenEvent", {{"mate-keyboard-properties"}}},
        {"GNOME-Classic", "Privacy_Accessibility", {}},
        {"", "Privacy_Accessibility", {}},
        {"GNOME", "Privacy_Camera", {}},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(settingsPageCommands(testCase.anchor, testCase.desktops), testCase.commands)
            << testCase.desktops << " " << testCase.anchor;
    }
}

TEST(SettingsPages, StartsTheFirstProgramThatIsThereWithoutThisProgramsSignals) {
    const TemporaryDirectory directory;
    for (const char* name : {"systemsettings5", "xdg-open"}) {
        directory.write(name, "#!/bin/sh\n"
                              "{ echo \"$@\"; grep -E 'Sig(Blk|Ign)' /proc/self/status; }"
                              " > \"$0-started\"; mv \"$0-started\" \"$0-done\"\n");
        fs::permissions(directory.path / name, fs::perms::owner_all);
    }
    const std::string path = directory.path.string() + ":/usr/bin:/bin";
    const ScopedVariable search("PATH", path.c_str());
    sigset_t termination;
    sigset_t before;
    sigemptyset(&termination);
    sigaddset(&termination, SIGTERM);
    sigprocmask(SIG_BLOCK, &termination, &before);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    fake::RecordingLog log;

    SettingsPages pages("KDE", log);
    EXPECT_TRUE(pages.open(std::string(prefix) + "Privacy_Accessibility"));
    EXPECT_TRUE(pages.open("file:///a%20b/index.html"));
    sigprocmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGXFSZ, previous);
    const std::string signals = "\nSigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n";
    for (const auto& [program, arguments] :
         {std::pair("systemsettings5", "kcm_access"), {"xdg-open", "file:///a%20b/index.html"}}) {
        const std::string done = std::string(program) + "-done";
        ASSERT_TRUE(real::waitUntil([&] { return fs::exists(directory.path / done); })) << program;
        EXPECT_EQ(directory.read(done), arguments + signals);
    }
    EXPECT_TRUE(log.lines().empty());

    for (const char* desktop : {"GNOME", "Openbox"}) { // not installed; not known
        EXPECT_FALSE(
            SettingsPages(desktop, log).open(std::string(prefix) + "Privacy_Accessibility"));
    }
    EXPECT_FALSE(pages.open("ftp://example.org/"));
    EXPECT_EQ(log.messages("Settings", LogLevel::error).size(), 3U);
}

} // namespace
} // namespace kelvora
