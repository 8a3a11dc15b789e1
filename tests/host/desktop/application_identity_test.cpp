// SPDX-License-Identifier: MIT
#include "host/linux/desktop/application_identity.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace kelvora {
namespace {

using Entry = DesktopEntryMatch;

struct Case {
    std::string_view name;
    ApplicationTraits traits;
    std::optional<Entry> entry;
    std::string expected;
};

void expectIdentities(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        const ApplicationIdentity identity = identifyApplication(c.traits, c.entry);
        const char* const kind = identity.kind == ApplicationKind::terminal      ? " terminal"
                                 : identity.kind == ApplicationKind::noSelectAll ? " noSelectAll"
                                                                                 : "";
        EXPECT_EQ(identity.bundleIdentifier.value_or("none") + kind, c.expected) << c.name;
    }
}

TEST(ApplicationIdentityTest, Identifier) {
    const std::optional<Entry> none;
    expectIdentities({
        {"entry", {"", "Gedit", "gedit", "/bin/gedit"}, Entry{"org.gedit", {}}, "org.gedit"},
        {"GTK application", {"org.Maker.App", "App", "app", "/bin/app"}, none, "org.Maker.App"},
        {"no valid GTK application ID", {"a b.c", "App", "app", "/bin/app"}, none, "app"},
        {"several entries", {"", "Java-App", "", "/bin/app"}, Entry{}, "java-app"},
        {"instance", {"", "", "Instance", "/bin/app"}, none, "instance"},
        {"program file", {"", "", "", "/opt/App"}, none, "App"},
        {"nothing", {}, none, "none"},
        {"malformed", {"\xff.\xff", "A\xff\nB", "", ""}, none, "a\uFFFDb"},
        {"only control characters", {"", "\n\x01", "\t", "/bin/app"}, none, "app"},
        // Programs known on every platform.
        {"class that the user chose",
         {"", "notes", "notes", "/bin/kitty"},
         Entry{"notes", {}},
         "net.kovidgoyal.kitty terminal"},
        {"known class", {"", "Alacritty", "x", ""}, Entry{"x", {}}, "org.alacritty terminal"},
        {"known GTK application",
         {"com.mitchellh.ghostty", "x", "x", ""},
         none,
         "com.mitchellh.ghostty terminal"},
        {"another program file of that name", {"", "Sim", "sim", "/bin/hyper"}, none, "sim"},
        {"only begins so", {"", "kitty-x", "x", "/bin/kitty-x"}, none, "kitty-x"},
    });
}

TEST(ApplicationIdentityTest, Kind) {
    const std::optional<Entry> none;
    expectIdentities({
        {"category",
         {"", "New", "new", ""},
         Entry{"new", {"System", "TerminalEmulator"}},
         "new terminal"},
        {"one of several entries",
         {"", "Odd", "odd", ""},
         Entry{{}, {"Settings", "TerminalEmulator"}},
         "odd terminal"},
        {"class", {"", "URxvt", "x", ""}, none, "urxvt terminal"},
        {"instance", {"", "Work", "xterm", ""}, none, "work terminal"},
        {"another's entry",
         {"", "mutt", "mutt", "/bin/konsole"},
         Entry{"mutt", {"Office"}},
         "mutt terminal"},
        {"commands on Control", {"", "Emacs", "emacs", ""}, Entry{"emacs", {}}, "emacs terminal"},
        {"file manager", {"", "F", "f", ""}, Entry{"f", {"FileManager"}}, "f noSelectAll"},
        {"remote viewer", {"", "V", "v", ""}, Entry{"v", {"RemoteAccess"}}, "v terminal"},
        {"drawing", {"", "D", "d", ""}, Entry{"d", {"Graphics", "Qt"}}, "d noSelectAll"},
        {"editor", {"", "K", "k", ""}, Entry{"k", {"Utility", "TextEditor"}}, "k noSelectAll"},
        {"table", {"", "T", "t", ""}, Entry{"t", {"Office", "Spreadsheet"}}, "t noSelectAll"},
        {"browser of files and pages",
         {"", "konqueror", "konqueror", ""},
         Entry{"konqbrowser", {"WebBrowser"}},
         "konqbrowser noSelectAll"},
        {"fields in an office suite", {"", "W", "w", ""}, Entry{"w", {"Office", "Email"}}, "w"},
        {"class of a file manager", {"", "Pcmanfm", "x", ""}, none, "pcmanfm noSelectAll"},
        {"any processor", {"", "x", "x", "/bin/qemu-system-riscv64"}, none, "x terminal"},
        {"only begins so", {"", "dolphin-emu", "dolphin-emu", ""}, none, "dolphin-emu"},
        {"desktop window", {"", "Panel", "panel", "", true}, none, "panel noSelectAll"},
        {"terminal as desktop", {"", "XTerm", "xterm", "", true}, none, "xterm terminal"},
        {"terminal for remote machines",
         {"", "PuTTY", "putty", ""},
         Entry{"putty", {"RemoteAccess"}},
         "putty terminal"},
    });
}

} // namespace
} // namespace kelvora
