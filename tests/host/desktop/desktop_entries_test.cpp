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

    void write(const fs::path& file, std::string_view content) const {
        fs::create_directories((root_ / file).parent_path());
        std::ofstream(root_ / file, std::ios::binary) << content;
    }
    void entry(const fs::path& file, std::string_view keys) const {
        write(file, "[Desktop Entry]\nType=Application\nName=N\n" + std::string(keys) + "\n");
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
    entry("system/by-startup-class.desktop", "StartupWMClass=Editor");
    entry("system/by-startup-instance.desktop", "StartupWMClass=editor-main");
    entry("system/editor.desktop", "Exec=b");
    entry("system/maker.one.Studio.desktop", "Exec=c");
    entry("system/maker.one.Twice.desktop", "Exec=shared --one");
    entry("system/maker.two.Twice.desktop", "Exec=/opt/shared --two");
    entry("system/runs.desktop", "Exec=\"/opt/my app/program\" --new %U");
    entry("system/through-env.desktop", "Exec=env LANG=C /usr/bin/wrapped %f");
    entry("system/script.desktop", "Exec=python3 /usr/share/script.py");
    entry("system/sub/dir/nested.desktop", "Exec=d");
    entry("system/main.desktop", "StartupWMClass=Family\nNoDisplay=false");
    entry("system/main-settings.desktop", "StartupWMClass=Family");
    entry("system/hid.desktop", "StartupWMClass=Family\nNoDisplay=true");
    entry("system/invisible.desktop", "StartupWMClass=Unseen\nNoDisplay=true");
    entry("system/pager.desktop", "Exec=pager\nTerminal=true");
    entry("system/nothing.desktop", "Exec=");

    struct Case {
        std::string_view name;
        ApplicationTraits traits;
        std::string_view id;
    };
    const Case cases[] = {
        {"GTK application ID before all",
         {"by-gtk-id.App", "Editor", "editor", "b"},
         "by-gtk-id.App"},
        {"unknown GTK application ID", {"no.such.App", "Editor", "", ""}, "by-startup-class"},
        {"startup class = class before = instance",
         {"", "Editor", "editor-main", "b"},
         "by-startup-class"},
        {"startup class = instance before file name",
         {"", "EDITOR", "editor-main", ""},
         "by-startup-instance"},
        {"startup class is compared exactly, file name in any case",
         {"", "EDITOR", "x", ""},
         "editor"},
        {"file name = instance", {"", "X", "Editor", ""}, "by-startup-class"},
        {"file name = instance in any case", {"", "X", "eDiToR", "program"}, "editor"},
        {"last part of the file name", {"", "studio", "x", "program"}, "maker.one.Studio"},
        {"the same last part twice", {"", "Twice", "x", ""}, "several"},
        {"program in quotes and with arguments", {"", "X", "x", "/usr/lib/program"}, "runs"},
        {"program behind env", {"", "", "", "/usr/bin/wrapped"}, "through-env"},
        {"program of several entries", {"", "", "", "/usr/bin/shared"}, "several"},
        {"an interpreter is nobody's program", {"", "", "", "/usr/bin/python3"}, "none"},
        {"subdirectories are part of the ID", {"", "sub-dir-nested", "", ""}, "sub-dir-nested"},
        {"nested by its own name", {"", "nested", "", ""}, "none"},
        {"the plain one of a family", {"", "Family", "", ""}, "main"},
        {"not shown in menus", {"", "Unseen", "", ""}, "invisible"},
        {"runs in a terminal, so has no window", {"", "pager", "pager", "pager"}, "none"},
        {"nothing known", {"", "", "", ""}, "none"},
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
    write("home/broken.desktop", "not an entry");
    entry("system/broken.desktop", "StartupWMClass=Whole");

    DesktopEntries index = entries();
    EXPECT_EQ(idOf(index, {.windowClass = "New"}), "moved");
    EXPECT_EQ(idOf(index, {.windowClass = "Old"}), "none");
    EXPECT_EQ(idOf(index, {.windowClass = "Removed"}), "none");
    EXPECT_EQ(idOf(index, {.windowClass = "Whole"}), "broken");
}

TEST_F(DesktopEntriesTest, SurvivesWhateverLiesInTheDirectories) {
    write("system/empty.desktop", "");
    write("system/binary.desktop", std::string(4096, '\0'));
    write("system/other-group.desktop", "[Other]\nType=Application\n");
    write("system/link.desktop", "[Desktop Entry]\nType=Link\nURL=x\nStartupWMClass=Link\n");
    entry("system/bad-exec.desktop", "Exec=\"unclosed\nStartupWMClass=BadExec");
    entry("system/bad-env.desktop", "Exec=env -i A=B\nStartupWMClass=BadEnv");
    entry("system/bad-utf8.desktop", "StartupWMClass=\xff\nExec=bad-utf8-program");
    entry("system/huge.desktop", "StartupWMClass=Huge\nX=" + std::string(2'000'000, 'x'));
    entry("system/bad-name-\xff.desktop", "StartupWMClass=BadName");
    entry("system/.desktop", "StartupWMClass=NoName");
    fs::create_directories(root_ / "system/directory.desktop");
    fs::create_directory_symlink("..", root_ / "system/directory.desktop/loop");
    fs::create_symlink("nowhere", root_ / "system/dangling.desktop");
    ASSERT_EQ(mkfifo((root_ / "system/pipe.desktop").c_str(), 0600), 0);

    DesktopEntries index = entries();
    for (const char* unusable : {"Link", "Huge", "BadName", "NoName"})
        EXPECT_EQ(idOf(index, {.windowClass = unusable}), "none") << unusable;
    EXPECT_EQ(idOf(index, {.windowClass = "BadExec"}), "bad-exec");
    EXPECT_EQ(idOf(index, {.windowClass = "BadEnv"}), "bad-env");
    EXPECT_EQ(idOf(index, {.executable = "bad-utf8-program"}), "bad-utf8");
}

TEST_F(DesktopEntriesTest, FollowsChanges) {
    entry("system/sub/first.desktop", "");
    DesktopEntries index = entries();
    EXPECT_EQ(idOf(index, {.windowClass = "sub-first"}), "sub-first");

    // Where files have coarse times, a change right after another leaves the directory's as it was.
    const auto time = fs::last_write_time(root_ / "system/sub");
    entry("system/sub/second.desktop", "");
    fs::last_write_time(root_ / "system/sub", time);
    EXPECT_EQ(idOf(index, {.windowClass = "sub-second"}), "sub-second");

    age("system/sub", std::chrono::hours(48));
    age("system", std::chrono::hours(48));
    EXPECT_EQ(idOf(index, {.windowClass = "sub-first"}), "sub-first");
    fs::remove(root_ / "system/sub/first.desktop");
    age("system/sub", std::chrono::hours(24));
    EXPECT_EQ(idOf(index, {.windowClass = "sub-first"}), "none");

    entry("home/appears.desktop", "");
    EXPECT_EQ(idOf(index, {.windowClass = "appears"}), "appears");
    fs::remove_all(root_ / "system");
    EXPECT_EQ(idOf(index, {.windowClass = "sub-second"}), "none");
}

TEST_F(DesktopEntriesTest, ReadsNothingAgainWhileNothingChanged) {
    entry("system/application.desktop", "StartupWMClass=Before");
    age("system", std::chrono::hours(48));
    DesktopEntries index = entries();
    EXPECT_EQ(idOf(index, {.windowClass = "Before"}), "application");
    entry("system/application.desktop", "StartupWMClass=After"); // leaves the directory's time
    EXPECT_EQ(idOf(index, {.windowClass = "Before"}), "application");
}

TEST(StandardApplicationDirectoriesTest, FollowTheEnvironment) {
    struct Case {
        const char* dataHome;
        const char* dataDirectories;
        std::vector<fs::path> expected;
    };
    const Case cases[] = {
        {"",
         "",
         {"/h/.local/share/applications", "/usr/local/share/applications",
          "/usr/share/applications"}},
        {"/data", "/a:relative::/b/", {"/data/applications", "/a/applications", "/b/applications"}},
        {"relative", "/a", {"/a/applications"}},
    };
    setenv("HOME", "/h", 1);
    for (const Case& c : cases) {
        setenv("XDG_DATA_HOME", c.dataHome, 1);
        setenv("XDG_DATA_DIRS", c.dataDirectories, 1);
        EXPECT_EQ(standardApplicationDirectories(), c.expected) << c.dataHome;
    }
}

} // namespace
} // namespace kelvora
