// SPDX-License-Identifier: MIT
#include "host/linux/desktop/config_directories.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

fs::path homeDirectory() {
    if (fs::path home(environment("HOME")); home.is_absolute())
        return home;
    std::array<char, 16384> texts{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr)
        return {};
    return found->pw_dir;
}

} // namespace

std::optional<fs::path> configHome() {
    // Relative paths in these variables are to be ignored.
    if (fs::path directory(environment("XDG_CONFIG_HOME")); directory.is_absolute())
        return directory;
    const fs::path home = homeDirectory();
    return home.is_absolute() ? std::optional(home / ".config") : std::nullopt;
}

std::vector<fs::path> systemConfigDirectories() {
    std::string_view rest = environment("XDG_CONFIG_DIRS");
    if (rest.empty())
        rest = "/etc/xdg";
    std::vector<fs::path> directories;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        if (fs::path directory(rest.substr(0, end)); directory.is_absolute())
            directories.push_back(std::move(directory));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return directories;
}

} // namespace kelvora
