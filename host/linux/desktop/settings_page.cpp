// SPDX-License-Identifier: MIT
#include "host/linux/desktop/settings_page.h"

#include <glib.h>

#include <csignal>
#include <memory>

namespace kelvora {
namespace {

constexpr std::string_view category = "Settings"; // of the log lines
constexpr std::string_view privacySettings =
    "x-apple.systempreferences:com.apple.preference.security?";

struct Pages {
    std::string_view desktop; ///< as in XDG_CURRENT_DESKTOP
    const char* accessibility;
    const char* keyboard;
};

constexpr Pages pagesOfDesktops[] = {
    {"GNOME", "gnome-control-center universal-access", "gnome-control-center keyboard"},
    {"KDE", "systemsettings kcm_access", "systemsettings kcm_keyboard"},
    {"KDE", "systemsettings5 kcm_access", "systemsettings5 kcm_keyboard"}, // before Plasma 5.26
    {"XFCE", "xfce4-accessibility-settings", "xfce4-keyboard-settings"},
    {"X-Cinnamon", "cinnamon-settings universal-access", "cinnamon-settings keyboard"},
    {"Cinnamon", "cinnamon-settings universal-access", "cinnamon-settings keyboard"},
    {"MATE", "mate-at-properties", "mate-keyboard-properties"},
};

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        if (end != 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return parts;
}

/// In the child, before the program. What this program does with signals is not for that one.
void restoreSignals(gpointer /*data*/) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
}

/// What went wrong; empty when the program runs.
std::string start(const SettingsCommand& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str())); // only read there
    arguments.push_back(nullptr);
    constexpr auto flags = static_cast<GSpawnFlags>(
        G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    GError* error = nullptr;
    // Its parent is init, which takes up its end.
    if (g_spawn_async(nullptr, arguments.data(), nullptr, flags, restoreSignals, nullptr, nullptr,
                      &error) != FALSE)
        return {};
    const std::unique_ptr<GError, decltype(&g_error_free)> owner(error, g_error_free);
    return error->message;
}

} // namespace

std::vector<SettingsCommand> settingsPageCommands(std::string_view anchor,
                                                  std::string_view currentDesktops) {
    const auto page = anchor == "Privacy_Accessibility" ? &Pages::accessibility
                      : anchor == "Privacy_ListenEvent" ? &Pages::keyboard
                                                        : nullptr;
    std::vector<SettingsCommand> commands;
    if (page == nullptr)
        return commands;
    for (const std::string& desktop : split(currentDesktops, ':')) {
        for (const Pages& pages : pagesOfDesktops) {
            if (pages.desktop == desktop)
                commands.push_back(split(pages.*page, ' '));
        }
    }
    return commands;
}

bool SettingsPages::open(std::string_view address) {
    std::string failure = "this desktop is not known to have one";
    for (const SettingsCommand& command : commandsFor(address)) {
        failure = start(command);
        if (failure.empty())
            return true;
    }
    log_.write(LogLevel::error, category,
               "No page for " + std::string(address) + " can be opened: " + failure);
    return false;
}

std::vector<SettingsCommand> SettingsPages::commandsFor(std::string_view address) const {
    if (address.starts_with("https://") || address.starts_with("file://"))
        return {{"xdg-open", std::string(address)}};
    if (!address.starts_with(privacySettings))
        return {};
    return settingsPageCommands(address.substr(privacySettings.size()), currentDesktops_);
}

} // namespace kelvora
