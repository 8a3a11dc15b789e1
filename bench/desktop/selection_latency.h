// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/text_application.h"

#include <memory>

namespace kelvora::bench {

enum class SelectionPath { accessibility, clipboard };

/// A single-line field of a program that no assistive technology sees.
[[nodiscard]] std::unique_ptr<real::TextApplication> openHiddenField(real::RealDesktop& desktop);

/// Prints how long a selected word takes to be repaired in an application that goes the given way;
/// false when it is not repaired.
[[nodiscard]] bool measureSelectionLatency(real::RealDesktop& desktop,
                                           real::TextApplication& application, SelectionPath path,
                                           int runs);

} // namespace kelvora::bench
