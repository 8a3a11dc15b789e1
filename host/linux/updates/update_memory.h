// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// What is kept from one run to the next.
struct UpdateMemory {
    std::string key = {}; ///< base64; the serials of another key say nothing
    std::int64_t highestSerial = 0;
    std::optional<std::chrono::sys_seconds> lastCheck = {}; ///< that reached a good feed
    std::string remindedVersion = {};                       ///< empty before the first reminder
    std::optional<std::chrono::sys_seconds> remindedAt = {};
    friend bool operator==(const UpdateMemory&, const UpdateMemory&) = default;
};

/// Absent when `json` is damaged.
[[nodiscard]] std::optional<UpdateMemory> parseUpdateMemory(std::string_view json);
[[nodiscard]] std::string formatUpdateMemory(const UpdateMemory& memory);

/// At most `limit` bytes of a file; absent when it cannot be read or is longer.
[[nodiscard]] std::optional<std::string> readSmallFile(const std::string& path, std::int64_t limit);
/// Replaces `path` as a whole or not at all, readable by the user only, in a directory that is made
/// where there is none. False when it failed.
[[nodiscard]] bool replacePrivateFile(const std::string& path, std::string_view content);

} // namespace kelvora
