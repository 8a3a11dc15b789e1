// SPDX-License-Identifier: MIT
#include "host/linux/desktop/desktop_entries.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

class DesktopEntriesTest : public testing::Test {
protected:
    DesktopEntriesTest() {
        std::string name = (fs::temp_directory_path() / "entries-XXXXXX").string();
        root_ = mkdtemp(name.data());
    }
    ~DesktopEntriesTest() override { fs::remove_all(root_); }

    void entry(const fs::path& file, std::string_view keys,
               std::string_view head = "[Desktop Entry]\nType=Application\nName=N\n") const {
        fs::create_directories((root_ / file).parent_path());
        std::ofstream(root_ / file, std::ios::binary) << head << keys << '\n';
    }
    /// Makes a directory look as if nothing had changed in it for a long time.
    void age(const fs::path& directory, std::chrono::hours hours) const {
        fs::last_write_time(root_ / directory, fs::file_time_type::clock::now() - hours);
    }
    [[nodiscard]] DesktopEntries entries() const {
        return DesktopEntries({root_ / "home", root_ / "system"});
    }

    fs::path root_;
};

std::string idOf(DesktopEntries& entries, const ApplicationTraits& traits) {
    const auto match = entries.find(traits);
    return !match ? "none" : match->id.value_or("several");
}

TEST_F(DesktopEntriesTest, FindsTheApplicationByTheSurestSign) {
    entry("system/by-gtk-id.App.desktop", "Exec=a");
    entry("system/by-class.desktop", "StartupWMClass=Editor");
    entry("system/by-instance.desktop", "StartupWMClass=editor-main");
    entry("system/editor.desktop", "Exec=b");
    entry("system/maker.one.Studio.desktop", "Exec=c");
    entry("system/one.desktop", "Exec=shared --one");
    entry("system/two.desktop", "Exec=/opt/shared --two");
    entry("system/runs.desktop", "Exec=\"/opt/my app/program\" --new %U");
    entry("system/through-env.desktop", "Exec=env LANG=C /usr/bin/wrapped %f");
    entry("system/script.desktop", "Exec=python3 /usr/share/script.py");
    entry("system/sub/dir/nested.desktop", "Exec=d");
    entry("system/main.desktop", "StartupWMClass=Family");
    entry("system/main-settings.desktop", "StartupWMClass=Family");
    entry("system/invisible.desktop", "StartupWMClass=Family\nNoDisplay=true");
    entry("system/pager.desktop", "Exec=pager\nTerminal=true");

    struct Case {
        std::string_view name;
        ApplicationTraits traits;
        std::string_view id;
    };
    const Case cases[] = {
        {"GTK application ID first", {"by-gtk-id.App", "Editor", "editor", "b"}, "by-gtk-id.App"},
        {"startup class = class", {"no.App", "Editor", "editor-main", "b"}, "by-class"},
        {"startup class = instance", {"", "EDITOR", "editor-main", ""}, "by-instance"},
        {"file name in any case", {"", "EDITOR", "x", ""}, "editor"},
        {"file name before program", {"", "X", "eDiToR", "program"}, "editor"},
        {"last part of the file name", {"", "studio", "x", "program"}, "maker.one.Studio"},
        {"program in quotes", {"", "X", "x", "/usr/lib/program"}, "runs"},
        {"program behind env", {"", "", "", "/usr/bin/wrapped"}, "through-env"},
        {"program of several entries", {"", "", "", "/usr/bin/shared"}, "several"},
        {"an interpreter is nobody's program", {"", "", "", "/usr/bin/python3"}, "none"},
        {"subdirectories are part of the ID", {"", "sub-dir-nested", "", ""}, "sub-dir-nested"},
        {"the plain one of a family", {"", "Family", "", ""}, "main"},
        {"runs in a terminal, so has no window", {"", "pager", "pager", "pager"}, "none"},
        {"bytes that are no text", {"\xff", "\xff\xfe", "\xc3", "/\xff"}, "none"},
    };
    DesktopEntries index = entries();
    for (const Case& c : cases)
        EXPECT_EQ(idOf(index, c.traits), c.id) << c.name;
}

TEST_F(DesktopEntriesTest, CollectsTheCategoriesOfAllThatMatch) {
    entry("system/one.desktop", "Exec=shared\nCategories=System;TerminalEmulator;");
    entry("system/two.desktop", "Exec=shared --settings\nCategories=Settings");
    const auto match = entries().find({.executable = "/bin/shared"});
    ASSERT_TRUE(match);
    EXPECT_EQ(match->categories,
              (std::vector<std::string>{"System", "TerminalEmulator", "Settings"}));
}

TEST_F(DesktopEntriesTest, AnEarlierDirectoryHidesTheSameId) {
    entry("home/moved.desktop", "StartupWMClass=New");
    entry("system/moved.desktop", "StartupWMClass=Old");
    entry("home/sub-removed.desktop", "Hidden=true");
    entry("system/sub/removed.desktop", "StartupWMClass=Removed");
    DesktopEntries index = entries();
    EXPECT_EQ(idOf(index, {.windowClass = "New"}), "moved");
    EXPECT_EQ(idOf(index, {.windowClass = "Old"}), "none");
    EXPECT_EQ(idOf(index, {.windowClass = "Removed"}), "none");
}

TEST_F(DesktopEntriesTest, SurvivesWhateverLiesInTheDirectories) {
    entry("system/binary.desktop", std::string(4096, '\0'), "");
    entry("system/link.desktop", "StartupWMClass=Link", "[Desktop Entry]\nType=Link\nURL=x\n");
    entry("system/bad-exec.desktop", "Exec=\"unclosed\nStartupWMClass=BadExec");
    entry("system/bad-env.desktop", "Exec=env -i A=B\nStartupWMClass=BadEnv");
    entry("system/huge.desktop", "StartupWMClass=Huge\nX=" + std::string(2'000'000, 'x'));
    entry("system/bad-name-\xff.desktop", "StartupWMClass=BadName");
    fs::create_directories(root_ / "system/directory.desktop");
    fs::create_directory_symlink("..", root_ / "system/directory.desktop/loop");
    fs::create_symlink("nowhere", root_ / "system/dangling.desktop");
    ASSERT_EQ(mkfifo((root_ / "system/pipe.desktop").c_str(), 0600), 0);

    DesktopEntries index = entries();
    for (const char* unusable : {"Link", "Huge", "BadName"})
        EXPECT_EQ(idOf(index, {.windowClass = unusable}), "none") << unusable;
    EXPECT_EQ(idOf(index, {.windowClass = "BadExec"}), "bad-exec");
    EXPECT_EQ(idOf(index, {.windowClass = "BadEnv"}), "bad-env");
}

TEST_F(DesktopEntriesTest, FollowsChangesAndReadsNothingAgainWithoutOne) {
    entry("system/sub/first.desktop", "StartupWMClass=Before");
    DesktopEntries index = entries();
    EXPECT_EQ(idOf(index, {.windowClass = "sub-first"}), "sub-first");

    // Where files have coarse times, a change right after another leaves the directory's as it was.
    const auto time = fs::last_write_time(root_ / "system/sub");
    entry("system/sub/second.desktop", "");
    fs::last_write_time(root_ / "system/sub", time);
    EXPECT_EQ(idOf(index, {.windowClass = "sub-second"}), "sub-second");

    age("system/sub", std::chrono::hours(48));
    age("system", std::chrono::hours(48));
    EXPECT_EQ(idOf(index, {.windowClass = "Before"}), "sub-first");
    entry("system/sub/first.desktop", "StartupWMClass=After"); // leaves the directory's time
    EXPECT_EQ(idOf(index, {.windowClass = "Before"}), "sub-first");
    fs::remove(root_ / "system/sub/first.desktop");
    age("system/sub", std::chrono::hours(24));
    EXPECT_EQ(idOf(index, {.windowClass = "sub-first"}), "none");

    entry("home/appears.desktop", "");
    EXPECT_EQ(idOf(index, {.windowClass = "appears"}), "appears");
    fs::remove_all(root_ / "system");
    EXPECT_EQ(idOf(index, {.windowClass = "sub-second"}), "none");
}

TEST(StandardApplicationDirectoriesTest, FollowTheEnvironment) {
    using Paths = std::vector<fs::path>;
    setenv("HOME", "/h", 1);
    setenv("XDG_DATA_HOME", "", 1);
    setenv("XDG_DATA_DIRS", "", 1);
    EXPECT_EQ(standardApplicationDirectories(),
              (Paths{"/h/.local/share/applications", "/usr/local/share/applications",
                     "/usr/share/applications"}));
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("XDG_DATA_DIRS", "/a:relative::/b/", 1);
    EXPECT_EQ(standardApplicationDirectories(), (Paths{"/a/applications", "/b/applications"}));
}

} // namespace
} // namespace kelvora
