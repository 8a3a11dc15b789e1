// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_signature.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// Where updates come from, as the installation says it (docs/updates.md).
struct UpdateConfiguration {
    std::string feedUrl; ///< https
    Ed25519PublicKey publicKey{};
    std::chrono::seconds interval{};
};

/// Between two scheduled checks. A configured interval is brought into this range.
inline constexpr std::chrono::seconds shortestUpdateInterval = std::chrono::hours(1);
inline constexpr std::chrono::seconds longestUpdateInterval = std::chrono::days(30);
inline constexpr std::chrono::seconds defaultUpdateInterval = std::chrono::days(1);

/// Absent when `json` is not a configuration in every detail: half a configuration is none.
[[nodiscard]] std::optional<UpdateConfiguration> parseUpdateConfiguration(std::string_view json);

/// An absolute HTTPS address with a host, without credentials or fragment, of at most 2048
/// characters.
[[nodiscard]] bool isUpdateUrl(std::string_view url);

} // namespace kelvora
