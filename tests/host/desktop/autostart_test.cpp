// SPDX-License-Identifier: MIT
#include "host/linux/desktop/autostart.h"

#include "tests/host/desktop/temporary_directory.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

constexpr const char* userEntry = "home/autostart/kelvora.desktop";
constexpr const char* systemEntry = "etc/autostart/kelvora.desktop";

/// An entry with these keys beside its Exec.
std::string entry(const std::string& keys = "") {
    return "[Desktop Entry]\nType=Application\nName=Kelvora\nExec=kelvora\n" + keys + "\n";
}

class AutostartTest : public testing::Test {
protected:
    /// Of a program that is there, if not told otherwise.
    [[nodiscard]] Autostart autostart(const char* program = "/bin/true") const {
        return Autostart({.userDirectory = directory_->path / "home/autostart",
                          .systemDirectories = {directory_->path / "etc/autostart"},
                          .currentDesktops = "ubuntu:GNOME"},
                         program);
    }
    [[nodiscard]] bool has(const std::string& line) const {
        return ("\n" + directory_->read(userEntry)).find("\n" + line + "\n") != std::string::npos;
    }

    std::optional<TemporaryDirectory> directory_{std::in_place};
};

TEST_F(AutostartTest, FollowsTheEntryInEffect) {
    const struct {
        std::string user; ///< empty: no such file
        std::string system;
        bool isEnabled;
    } cases[] = {
        {"", "", false},
        {entry(), entry("Hidden=true"), true},
        {"", entry(), true},
        {entry("Hidden=true"), entry(), false},
        {entry("X-GNOME-Autostart-enabled=false"), "", false},
        {entry("OnlyShowIn=XFCE;GNOME;"), "", true},
        {entry("OnlyShowIn=XFCE;KDE;"), "", false},
        {entry("NotShowIn=GNOME;"), "", false},
        {entry("TryExec=/nowhere/kelvora"), "", false},
        {"binary\x01junk", entry(), false},
        {"masked", entry(), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.user + c.system);
        directory_.emplace();
        if (!c.user.empty())
            directory_->write(userEntry, c.user);
        if (!c.system.empty())
            directory_->write(systemEntry, c.system);
        if (c.user == "masked") { // as some people do it
            fs::remove(directory_->path / userEntry);
            fs::create_symlink("/dev/null", directory_->path / userEntry);
        }
        Autostart autostart = this->autostart();
        EXPECT_EQ(autostart.isEnabled(), c.isEnabled);
        // Whatever was there, both switches work, and work again.
        for (const bool wanted : {true, false, true}) {
            EXPECT_EQ(autostart.setEnabled(wanted), std::nullopt);
            EXPECT_EQ(autostart.isEnabled(), wanted);
        }
        EXPECT_TRUE(has("Exec=/bin/true --login-launch"));
        EXPECT_EQ(directory_->read(systemEntry), c.system);
    }
    directory_.emplace();
    directory_->write("home", "a file in the directory's place");
    EXPECT_EQ(autostart().setEnabled(true), "Not a directory (autostart/kelvora.desktop)");
}

TEST_F(AutostartTest, FollowsTheProgramAndKeepsWhatTheUserAdded) {
    autostart().repair();
    EXPECT_FALSE(fs::exists(directory_->path / userEntry)) << "nobody asked for it";
    const std::pair<std::string, std::string> cases[] = {
        {"\"/old place/kelvora\" --login-launch", "/bin/true --login-launch"},
        {"nice /bin/true --login-launch", "nice /bin/true --login-launch"},
        {"/home/me/my-wrapper", "/home/me/my-wrapper"}, // not written by this program
    };
    const std::string added = "# mine\nName[ru]=\u041a\nOnlyShowIn=GNOME;\n";
    for (const auto& [exec, afterwards] : cases) {
        directory_->write(userEntry,
                          "[Desktop Entry]\n" + added + "Hidden=true\nExec=" + exec + "\n");
        autostart().repair();
        EXPECT_TRUE(has("Exec=" + afterwards) && has("Hidden=true")) << exec;
    }
    EXPECT_EQ(autostart().setEnabled(true), std::nullopt);
    EXPECT_NE(directory_->read(userEntry).find(added), std::string::npos);

    // Uninstalled, and installed again elsewhere.
    Autostart former = autostart((directory_->path / "uninstalled").c_str());
    EXPECT_EQ(former.setEnabled(true), std::nullopt);
    EXPECT_FALSE(former.isEnabled());
    autostart().repair();
    EXPECT_TRUE(autostart().isEnabled());

    // Quoted as an argument, and as a value.
    const char* const hostile = "/my %\t$HOME/`k`\"\\;&'()\n";
    EXPECT_EQ(autostart(hostile).setEnabled(true), std::nullopt);
    EXPECT_TRUE(has(R"(Exec="/my %%	\\$HOME/\\`k\\`\\"\\\\;&'()\n" --login-launch)"))
        << directory_->read(userEntry);
    const std::string written = directory_->read(userEntry);
    autostart(hostile).repair();
    EXPECT_EQ(directory_->read(userEntry), written) << "takes its own entry for another's";
    EXPECT_TRUE(autostart("/\xff/kelvora").setEnabled(true).has_value());
}

} // namespace
} // namespace kelvora
