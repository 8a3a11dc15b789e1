// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/real_desktop.h"

#include <filesystem>

namespace kelvora::bench {

/// Prints how long the preferences take from being asked for to their first painted frame, in a
/// program that has never shown them, and what they cost while they are open; false when they do
/// not open.
[[nodiscard]] bool measurePreferences(real::RealDesktop& desktop,
                                      const std::filesystem::path& executable, int runs);

} // namespace kelvora::bench
