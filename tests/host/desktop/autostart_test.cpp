// SPDX-License-Identifier: MIT
#include "host/linux/desktop/autostart.h"

#include "tests/host/desktop/temporary_directory.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

constexpr const char* program = "/bin/true"; // one that is there
constexpr const char* userEntry = "home/autostart/kelvora.desktop";
constexpr const char* systemEntry = "etc/autostart/kelvora.desktop";

/// An entry with these keys beside its Exec.
std::string entry(std::string_view keys = "") {
    std::string text("[Desktop Entry]\nType=Application\nName=Kelvora\nExec=kelvora\n");
    return text.append(keys).append("\n");
}

class AutostartTest : public testing::Test {
protected:
    [[nodiscard]] Autostart autostart(const char* runs = program) const {
        return Autostart({.userDirectory = directory_->path / "home/autostart",
                          .systemDirectories = {directory_->path / "none/autostart",
                                                directory_->path / "etc/autostart"},
                          .currentDesktops = "ubuntu:GNOME"},
                         runs);
    }
    /// The value of a key, as it stands in the user's entry; "none" when it lacks the key.
    [[nodiscard]] std::string value(std::string_view key) const {
        std::istringstream lines(directory_->read(userEntry));
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with(key) && line.substr(key.size(), 1) == "=")
                return line.substr(key.size() + 1);
        return "none";
    }

    std::optional<TemporaryDirectory> directory_{std::in_place};
};

TEST_F(AutostartTest, FollowsTheEntryInEffect) {
    const struct {
        const char* name;
        std::string user; ///< empty: no such file
        std::string system;
        bool isEnabled;
    } cases[] = {
        {"no entry", "", "", false},
        {"the user's", entry(), "", true},
        {"the system's", "", entry(), true},
        {"hidden", entry("Hidden=true"), "", false},
        {"system's hidden by the user", entry("Hidden=true"), entry(), false},
        {"user's before the system's", entry(), entry("Hidden=true"), true},
        {"switched off by the desktop", entry("X-GNOME-Autostart-enabled=false"), "", false},
        {"switched on by the desktop", entry("X-GNOME-Autostart-enabled=true"), "", true},
        {"this desktop", entry("OnlyShowIn=XFCE;GNOME;"), "", true},
        {"other desktops", entry("OnlyShowIn=XFCE;KDE;"), "", false},
        {"not this desktop", entry("NotShowIn=GNOME;"), "", false},
        {"program that is not there", entry("TryExec=/nowhere/kelvora"), "", false},
        {"program that is there", entry("TryExec=sh"), "", true},
        {"no command", "[Desktop Entry]\nType=Application\nName=K\n", "", false},
        {"no entry at all", "binary\x01junk", entry(), false},
    };
    for (const auto& c : cases) {
        directory_.emplace();
        if (!c.user.empty())
            directory_->write(userEntry, c.user);
        if (!c.system.empty())
            directory_->write(systemEntry, c.system);
        Autostart autostart = this->autostart();
        EXPECT_EQ(autostart.isEnabled(), c.isEnabled) << c.name;
        // Whatever was there, both switches work, and work again.
        for (const bool wanted : {true, false, true}) {
            EXPECT_EQ(autostart.setEnabled(wanted), std::nullopt) << c.name;
            EXPECT_EQ(autostart.isEnabled(), wanted) << c.name;
        }
        EXPECT_EQ(value("Exec"), "/bin/true --login-launch") << c.name;
        EXPECT_EQ(directory_->read(systemEntry), c.system) << c.name;
    }
}

TEST_F(AutostartTest, SeesChangesFromOutside) {
    Autostart autostart = this->autostart();
    EXPECT_FALSE(autostart.isEnabled());
    directory_->write(userEntry, entry()); // with its directory
    EXPECT_TRUE(autostart.isEnabled());
    directory_->write(userEntry, entry("Hidden=true")); // in place
    EXPECT_FALSE(autostart.isEnabled());
    fs::remove(directory_->path / userEntry);
    directory_->write(systemEntry, entry());
    EXPECT_TRUE(autostart.isEnabled());
    fs::remove_all(directory_->path / "etc");
    EXPECT_FALSE(autostart.isEnabled());

    directory_->write("dotfiles/entry", entry("Hidden=true"));
    fs::create_directories((directory_->path / userEntry).parent_path());
    fs::create_symlink("../../dotfiles/entry", directory_->path / userEntry);
    EXPECT_FALSE(autostart.isEnabled());
    directory_->write("dotfiles/entry", entry());
    EXPECT_TRUE(autostart.isEnabled());

    // Masked, as some people do it.
    fs::remove(directory_->path / userEntry);
    fs::create_symlink("/dev/null", directory_->path / userEntry);
    EXPECT_FALSE(autostart.isEnabled());
    EXPECT_EQ(autostart.setEnabled(true), std::nullopt);
    EXPECT_TRUE(autostart.isEnabled());
}

TEST_F(AutostartTest, KeepsWhatTheUserAdded) {
    const std::string added = "# mine\nX-GNOME-Autostart-Delay=5\nName[ru]=\u041a\n";
    directory_->write(userEntry, entry(added + "OnlyShowIn=GNOME;\nHidden=true"));
    EXPECT_EQ(autostart().setEnabled(true), std::nullopt);
    const std::string content = directory_->read(userEntry);
    EXPECT_NE(content.find(added), std::string::npos) << content;
    EXPECT_EQ(value("OnlyShowIn"), "GNOME;");
}

TEST_F(AutostartTest, IsNotEnabledForAProgramThatIsGone) {
    const std::string gone = (directory_->path / "uninstalled").string();
    Autostart autostart = this->autostart(gone.c_str());
    EXPECT_EQ(autostart.setEnabled(true), std::nullopt);
    EXPECT_FALSE(autostart.isEnabled());
    EXPECT_EQ(value("TryExec"), gone);
    // Installed again elsewhere.
    Autostart another = this->autostart();
    another.repair();
    EXPECT_TRUE(another.isEnabled());
    EXPECT_EQ(value("TryExec"), program);
}

TEST_F(AutostartTest, FollowsTheProgramWhenItMoves) {
    const struct {
        std::string_view exec;
        std::string_view afterwards;
    } cases[] = {
        {"/old/kelvora --login-launch", "/bin/true --login-launch"},
        {"\"/old place/kelvora\" --login-launch", "/bin/true --login-launch"},
        {"/bin/true --login-launch", "/bin/true --login-launch"},
        {"nice /bin/true --login-launch", "nice /bin/true --login-launch"},
        {"/home/me/my-wrapper", "/home/me/my-wrapper"}, // not written by this program
    };
    for (const auto& c : cases) {
        directory_->write(userEntry, "[Desktop Entry]\nHidden=true\nExec=" + std::string(c.exec));
        autostart().repair();
        EXPECT_EQ(value("Exec"), c.afterwards);
        EXPECT_EQ(value("Hidden"), "true");
    }
    directory_.emplace();
    autostart().repair();
    EXPECT_FALSE(fs::exists(directory_->path / userEntry)) << "nobody asked for it";
}

TEST_F(AutostartTest, QuotesTheProgram) {
    const struct {
        const char* program;
        std::string_view argument; ///< escaped twice: as an argument, and as a value
    } cases[] = {
        {"/a/plain-name_1.2/\u0439", "/a/plain-name_1.2/\u0439"},
        {"/my programs/k", "\"/my programs/k\""},
        {"/100%/k", "/100%%/k"},
        {R"(/a"b/k)", R"("/a\\"b/k")"},
        {R"(/$HOME/`k`)", R"("/\\$HOME/\\`k\\`")"},
        {R"(/a\b/k)", R"("/a\\\\b/k")"},
        {"/it's;&(k)", "\"/it's;&(k)\""},
        {"/a\tb\nc/k", "\"/a\tb\\nc/k\""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(autostart(c.program).setEnabled(true), std::nullopt);
        EXPECT_EQ(value("Exec"), std::string(c.argument).append(" --login-launch"));
        const std::string written = directory_->read(userEntry);
        autostart(c.program).repair();
        EXPECT_EQ(directory_->read(userEntry), written) << "takes its own entry for another's";
    }
}

TEST_F(AutostartTest, SaysWhatWentWrong) {
    directory_->write("home", "a file in the directory's place");
    Autostart autostart = this->autostart();
    EXPECT_EQ(autostart.setEnabled(true), "Not a directory (autostart/kelvora.desktop)");
    EXPECT_FALSE(autostart.isEnabled());
    EXPECT_EQ(autostart.setEnabled(false), std::nullopt);

    Autostart homeless({}, program);
    EXPECT_FALSE(homeless.isEnabled());
    EXPECT_TRUE(homeless.setEnabled(true).has_value());
    EXPECT_TRUE(this->autostart("/\xff/kelvora").setEnabled(true).has_value());
}

} // namespace
} // namespace kelvora
