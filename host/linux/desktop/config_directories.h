// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace kelvora {

// The XDG base directories, with their defaults. Read the environment.

/// $XDG_CONFIG_HOME, else .config of the home directory; absent when the user has none.
[[nodiscard]] std::optional<std::filesystem::path> configHome();
/// $XDG_CONFIG_DIRS, the most important first.
[[nodiscard]] std::vector<std::filesystem::path> systemConfigDirectories();

} // namespace kelvora
