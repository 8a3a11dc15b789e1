// SPDX-License-Identifier: MIT
#include "host/linux/desktop/application_identity.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace kelvora {
namespace {

constexpr auto ordinary = ApplicationKind::ordinary;
constexpr auto terminal = ApplicationKind::terminal;
constexpr auto noSelectAll = ApplicationKind::noSelectAll;

struct Case {
    std::string_view name;
    ApplicationTraits traits;
    std::optional<DesktopEntryMatch> entry;
    std::optional<std::string> identifier;
    ApplicationKind kind;
};

void expectIdentities(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        const ApplicationIdentity identity = identifyApplication(c.traits, c.entry);
        EXPECT_EQ(identity.bundleIdentifier, c.identifier) << c.name;
        EXPECT_EQ(identity.kind, c.kind) << c.name;
    }
}

std::optional<DesktopEntryMatch> entry(std::string id, std::vector<std::string> categories = {}) {
    return DesktopEntryMatch{.id = std::move(id), .categories = std::move(categories)};
}

const std::optional<DesktopEntryMatch> noEntry;

TEST(ApplicationIdentityTest, Identifier) {
    expectIdentities({
        {"entry",
         {"", "Gedit", "gedit", "/usr/bin/gedit"},
         entry("org.gnome.gedit"),
         "org.gnome.gedit",
         ordinary},
        {"GTK application ID",
         {"org.Maker.App", "App", "app", "/bin/app"},
         noEntry,
         "org.Maker.App",
         ordinary},
        {"no valid GTK application ID",
         {"a b.c", "App", "app", "/bin/app"},
         noEntry,
         "app",
         ordinary},
        {"class in lower case", {"", "My App", "other", "/bin/app"}, noEntry, "my app", ordinary},
        {"instance", {"", "", "Instance", "/bin/app"}, noEntry, "instance", ordinary},
        {"program file", {"", "", "", "/opt/App"}, noEntry, "App", ordinary},
        {"nothing", {}, noEntry, std::nullopt, ordinary},
        {"several entries",
         {"", "Java-App", "", "/bin/app"},
         DesktopEntryMatch{},
         "java-app",
         ordinary},
        {"malformed",
         {"\xff.\xff", "A\xff\nB", "", ""},
         noEntry,
         "a\xEF\xBF\xBD"
         "b",
         ordinary},
        {"only control characters", {"", "\n\x01", "\t", "/bin/app"}, noEntry, "app", ordinary},
    });
}

TEST(ApplicationIdentityTest, ProgramsKnownOnEveryPlatform) {
    expectIdentities({
        {"kitty",
         {"", "kitty", "kitty", "/usr/bin/kitty"},
         entry("kitty"),
         "net.kovidgoyal.kitty",
         terminal},
        {"kitty with a class that the user chose",
         {"", "notes", "notes", "/usr/bin/kitty"},
         entry("notes"),
         "net.kovidgoyal.kitty",
         terminal},
        {"Alacritty",
         {"", "Alacritty", "Alacritty", "/usr/bin/alacritty"},
         noEntry,
         "org.alacritty",
         terminal},
        {"WezTerm",
         {"", "org.wezfurlong.wezterm", "x", "/usr/bin/wezterm-gui"},
         noEntry,
         "com.github.wez.wezterm",
         terminal},
        {"Ghostty",
         {"com.mitchellh.ghostty", "ghostty", "ghostty", ""},
         noEntry,
         "com.mitchellh.ghostty",
         terminal},
        {"Tabby",
         {"", "tabby", "tabby", "/opt/Tabby/tabby"},
         entry("tabby"),
         "org.tabby",
         terminal},
        {"Hyper", {"", "Hyper", "hyper", "/opt/Hyper/hyper"}, noEntry, "co.zeit.hyper", terminal},
        {"rio",
         {"", "Rio", "Rio", "/usr/bin/rio"},
         entry("rio"),
         "com.raphaelamorim.rio",
         terminal},
        {"Warp", {"", "dev.warp.Warp", "dev.warp.Warp", ""}, noEntry, "dev.warp.Warp", terminal},
        {"another program whose file is called hyper",
         {"", "Simulator", "sim", "/bin/hyper"},
         noEntry,
         "simulator",
         ordinary},
        {"a name that only begins so",
         {"", "kitty-pictures", "x", "/bin/kitty-pictures"},
         noEntry,
         "kitty-pictures",
         ordinary},
        {"another terminal keeps its own identifier",
         {"", "Gnome-terminal", "gnome-terminal-server", "/usr/libexec/gnome-terminal-server"},
         entry("org.gnome.Terminal"),
         "org.gnome.Terminal",
         terminal},
    });
}

TEST(ApplicationIdentityTest, Kind) {
    expectIdentities({
        {"category of a terminal",
         {"", "NewTerm", "newterm", ""},
         entry("newterm", {"System", "TerminalEmulator"}),
         "newterm",
         terminal},
        {"one of several entries is a terminal",
         {"", "Odd", "odd", "/bin/newterm"},
         DesktopEntryMatch{.id = {}, .categories = {"Settings", "TerminalEmulator"}},
         "odd",
         terminal},
        {"terminal by class alone", {"", "URxvt", "x", ""}, noEntry, "urxvt", terminal},
        {"terminal by instance alone", {"", "Work", "xterm", ""}, noEntry, "work", terminal},
        {"terminal by program alone",
         {"", "work", "work", "/usr/bin/st"},
         noEntry,
         "work",
         terminal},
        {"terminal with another's entry",
         {"", "mutt", "mutt", "/usr/bin/konsole"},
         entry("mutt", {"Office"}),
         "mutt",
         terminal},
        {"editor with commands on Control",
         {"", "Emacs", "emacs", "/usr/bin/emacs-gtk"},
         entry("emacs", {"Development", "TextEditor"}),
         "emacs",
         terminal},
        {"gvim", {"", "Gvim", "gvim", "/usr/bin/vim.gtk3"}, entry("gvim"), "gvim", terminal},
        {"file manager by category",
         {"", "Files", "files", ""},
         entry("files", {"GTK", "FileManager"}),
         "files",
         noSelectAll},
        {"file manager by class", {"", "Pcmanfm", "pcmanfm", ""}, noEntry, "pcmanfm", noSelectAll},
        {"remote viewer by category",
         {"", "Viewer", "viewer", ""},
         entry("viewer", {"Network", "RemoteAccess"}),
         "viewer",
         noSelectAll},
        {"virtual machine",
         {"", "VirtualBox Machine", "VirtualBox Machine", ""},
         noEntry,
         "virtualbox machine",
         noSelectAll},
        {"emulator of any processor",
         {"", "x", "x", "/usr/bin/qemu-system-riscv64"},
         noEntry,
         "x",
         noSelectAll},
        {"not the emulator of the same name",
         {"", "dolphin-emu", "dolphin-emu", ""},
         noEntry,
         "dolphin-emu",
         ordinary},
        {"desktop window", {"", "Panel", "panel", "", true}, noEntry, "panel", noSelectAll},
        {"terminal as the desktop's window",
         {"", "XTerm", "xterm", "", true},
         noEntry,
         "xterm",
         terminal},
        {"terminal that also shows remote machines",
         {"", "PuTTY", "putty", ""},
         entry("putty", {"Network", "RemoteAccess"}),
         "putty",
         terminal},
    });
}

} // namespace
} // namespace kelvora
