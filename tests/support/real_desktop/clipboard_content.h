// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace kelvora::real {

/// What a selection offers: the bytes of each target by its name.
using ClipboardContent = std::map<std::string, std::string>;

/// Asks the owner of a selection ("CLIPBOARD", "PRIMARY") for everything that it offers, in whole
/// or in pieces, without the targets that say nothing of the content (TARGETS, TIMESTAMP, ...). A
/// target that the owner refuses, or gives as another type than asked for, is told as such. Absent
/// when there is no owner or it does not answer in time.
[[nodiscard]] std::optional<ClipboardContent>
readClipboard(const std::string& display, const std::string& selection = "CLIPBOARD",
              std::chrono::milliseconds deadline = std::chrono::seconds(20));

/// Asks for the plain text only.
[[nodiscard]] std::optional<std::string>
readSelectedText(const std::string& display, const std::string& selection = "CLIPBOARD",
                 std::chrono::milliseconds deadline = std::chrono::seconds(2));

} // namespace kelvora::real
