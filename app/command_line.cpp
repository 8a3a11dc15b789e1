// SPDX-License-Identifier: MIT
#include "app/command_line.h"

#include "host/linux/desktop/autostart_entry.h"

#include <sysexits.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kelvora {
namespace {

constexpr const char* version = "Kelvora " KELVORA_VERSION "\n";
constexpr const char* help =
    "Usage: kelvora [--login-launch]\n"
    "\n"
    "Tap Shift twice, and a word typed in the wrong keyboard layout is retyped in the other.\n"
    "Started again, it replaces the copy that runs and shows the preferences.\n"
    "\n"
    "  --login-launch  start without showing the preferences, as at login\n"
    "  --help          show this text\n"
    "  --version       show the version\n"
    "\n"
    "See kelvora(1).\n";

int print(const char* text) {
    return std::fputs(text, stdout) >= 0 && std::fflush(stdout) == 0 ? EXIT_SUCCESS : EX_IOERR;
}

} // namespace

std::optional<int> answerCommandLine(std::span<char* const> arguments) {
    if (arguments.empty())
        return std::nullopt;
    for (const std::string_view argument : arguments.subspan(1)) {
        if (argument == "--help" || argument == "-h")
            return print(help);
        if (argument == "--version")
            return print(version);
        if (argument.starts_with("--") && argument != loginLaunchArgument) {
            std::fprintf(stderr, "kelvora: unknown option %s; see kelvora --help\n",
                         argument.data()); // the argument itself, so it ends with a zero
            return EX_USAGE;
        }
    }
    return std::nullopt;
}

} // namespace kelvora
