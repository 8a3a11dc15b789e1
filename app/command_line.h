// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>

namespace kelvora {

/// Answers the options that only ask something, and refuses those that nobody knows. `arguments`
/// begin with the program's name. The exit code; absent when the program is to run. Options with
/// a single dash are the toolkit's.
[[nodiscard]] std::optional<int> answerCommandLine(std::span<char* const> arguments);

} // namespace kelvora
