// SPDX-License-Identifier: MIT
#include "host/linux/desktop/application_identity.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kelvora {
namespace {

using Entry = DesktopEntryMatch;

TEST(ApplicationIdentity, NameAndKind) {
    const std::optional<Entry> none;
    const struct {
        ApplicationTraits traits;
        std::optional<Entry> entry;
        std::string expected;
    } cases[] = {
        // The surest sign first.
        {{"org.Maker.App", "App", "app", "/bin/app"}, none, "org.Maker.App"},
        {{"", "\n\x01", "\t", "/opt/App"}, none, "App"},
        {{}, none, "none"},
        // Terminals, by any sign; not what only begins like one.
        {{"", "notes", "notes", "/bin/kitty"}, Entry{"notes", {}}, "net.kovidgoyal.kitty terminal"},
        {{"", "kitty-x", "x", "/bin/kitty-x"}, none, "kitty-x"},
        {{"", "New", "new", ""}, Entry{"new", {"System", "TerminalEmulator"}}, "new terminal"},
        {{"", "Odd", "odd", ""}, Entry{{}, {"TerminalEmulator"}}, "odd terminal"},
        {{"", "URxvt", "x", ""}, none, "urxvt terminal"},
        {{"", "mutt", "mutt", "/bin/konsole"}, Entry{"mutt", {"Office"}}, "mutt terminal"},
        {{"", "XTerm", "xterm", "", true}, none, "xterm terminal"},
        // Other machines, which may show one.
        {{"", "x", "x", "/bin/qemu-system-riscv64"}, none, "x terminal"},
        // Where everything selected is more than a text.
        {{"", "K", "k", ""}, Entry{"k", {"Utility", "TextEditor"}}, "k noSelectAll"},
        {{"", "konqueror", "x", ""}, Entry{"web", {"WebBrowser"}}, "web noSelectAll"},
        {{"", "dolphin-emu", "dolphin-emu", ""}, none, "dolphin-emu"},
        {{"", "Panel", "panel", "", true}, none, "panel noSelectAll"},
        {{"", "W", "w", ""}, Entry{"w", {"Office", "Email"}}, "w"},
    };
    for (const auto& c : cases) {
        const ApplicationIdentity identity = identifyApplication(c.traits, c.entry);
        const char* const kind = identity.kind == ApplicationKind::terminal      ? " terminal"
                                 : identity.kind == ApplicationKind::noSelectAll ? " noSelectAll"
                                                                                 : "";
        EXPECT_EQ(identity.bundleIdentifier.value_or("none") + kind, c.expected);
    }
}

} // namespace
} // namespace kelvora
