// SPDX-License-Identifier: MIT
#include "host/linux/desktop/desktop_entries.h"

#include "tests/host/desktop/temporary_directory.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

class DesktopEntriesTest : public testing::Test {
protected:
    void entry(const fs::path& file, const std::string& keys) const {
        files_.write(file, "[Desktop Entry]\nType=Application\nName=N\n" + keys + "\n");
    }
    /// The entry that fits; "several", "none".
    std::string idOf(const ApplicationTraits& traits) {
        const auto match = entries_.find(traits);
        return !match ? "none" : match->id.value_or("several");
    }
    std::string idOf(const char* windowClass) { return idOf({.windowClass = windowClass}); }

    TemporaryDirectory files_;
    DesktopEntries entries_{{files_.path / "home", files_.path / "system"}};
};

TEST_F(DesktopEntriesTest, FindsTheApplicationByTheSurestSign) {
    entry("system/by-class.desktop", "StartupWMClass=Editor");
    entry("system/editor.desktop", "Exec=b");
    entry("system/maker.one.Studio.desktop", "Exec=c");
    entry("system/one.desktop", "Exec=shared --one\nCategories=System;TerminalEmulator;");
    entry("system/two.desktop", "Exec=/opt/shared --two\nCategories=Settings");
    entry("system/runs.desktop", "Exec=\"/opt/my app/program\" --new %U");
    entry("system/main.desktop", "StartupWMClass=Family");
    entry("system/main-settings.desktop", "StartupWMClass=Family");
    entry("system/pager.desktop", "Exec=pager\nTerminal=true");
    const std::pair<ApplicationTraits, std::string_view> cases[] = {
        {{"no.App", "Editor", "editor-main", "b"}, "by-class"},
        {{"", "X", "eDiToR", "program"}, "editor"}, // the file's name
        {{"", "studio", "x", "program"}, "maker.one.Studio"},
        {{"", "X", "x", "/usr/lib/program"}, "runs"},
        {{"", "", "", "/usr/bin/shared"}, "several"},
        {{"", "Family", "", ""}, "main"},          // the plain one
        {{"", "pager", "pager", "pager"}, "none"}, // runs in a terminal, so has no window
        {{"\xff", "\xff\xfe", "\xc3", "/\xff"}, "none"},
    };
    for (const auto& [traits, id] : cases)
        EXPECT_EQ(idOf(traits), id) << traits.windowClass << traits.executable;
    EXPECT_EQ(entries_.find({.executable = "/bin/shared"})->categories,
              (std::vector<std::string>{"System", "TerminalEmulator", "Settings"}));
}

TEST_F(DesktopEntriesTest, SurvivesWhateverLiesInTheDirectories) {
    entry("home/moved.desktop", "StartupWMClass=New");
    entry("system/moved.desktop", "StartupWMClass=Old");
    entry("home/sub-removed.desktop", "Hidden=true");
    entry("system/sub/removed.desktop", "StartupWMClass=Removed");
    entry("system/bad-exec.desktop", "Exec=\"unclosed\nStartupWMClass=BadExec");
    entry("system/huge.desktop", "StartupWMClass=Huge\nX=" + std::string(2'000'000, 'x'));
    entry("system/bad-name-\xff.desktop", "StartupWMClass=BadName");
    fs::create_directories(files_.path / "system/directory.desktop");
    fs::create_directory_symlink("..", files_.path / "system/directory.desktop/loop");
    fs::create_symlink("nowhere", files_.path / "system/dangling.desktop");
    ASSERT_EQ(mkfifo((files_.path / "system/pipe.desktop").c_str(), 0600), 0);
    EXPECT_EQ(idOf("New"), "moved");
    EXPECT_EQ(idOf("BadExec"), "bad-exec");
    for (const char* unusable : {"Old", "Removed", "Huge", "BadName"})
        EXPECT_EQ(idOf(unusable), "none") << unusable;
}

TEST_F(DesktopEntriesTest, FollowsChanges) {
    entry("system/sub/first.desktop", "StartupWMClass=Before");
    EXPECT_EQ(idOf("Before"), "sub-first");
    // Where files have coarse times, a change right after another leaves the directory's as it was.
    const auto time = fs::last_write_time(files_.path / "system/sub");
    entry("system/sub/second.desktop", "");
    fs::last_write_time(files_.path / "system/sub", time);
    EXPECT_EQ(idOf("sub-second"), "sub-second");
    fs::remove_all(files_.path / "system");
    EXPECT_EQ(idOf("sub-second"), "none");
}

} // namespace
} // namespace kelvora
