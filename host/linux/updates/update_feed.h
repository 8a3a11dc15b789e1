// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_notice.h"
#include "host/linux/updates/update_signature.h"
#include "host/linux/updates/update_version.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kelvora {

/// One file that the installer takes.
struct UpdatePackage {
    std::string architecture; ///< as dpkg names it, or "all"
    std::string url;          ///< https
    std::int64_t size = 0;    ///< bytes
    std::string sha256;       ///< lower-case hexadecimal
    Ed25519Signature signature{};
};

/// What the server publishes (docs/updates.md).
struct UpdateFeed {
    std::int64_t serial = 0; ///< grows with every feed
    std::chrono::sys_seconds expires;
    UpdateVersion version;
    /// The oldest version that these packages can replace; absent when any will do.
    std::optional<UpdateVersion> minimumVersion;
    std::string notes; ///< plain text, UTF-8
    std::vector<UpdatePackage> packages;
};

/// No feed is longer, its signature included.
inline constexpr std::size_t maximumFeedSize = std::size_t{64} * 1024;
inline constexpr std::int64_t maximumPackageSize = std::int64_t{512} * 1024 * 1024;

/// Reads the signed part of a feed; absent when anything in it is missing or out of its range.
[[nodiscard]] std::optional<UpdateFeed> parseUpdateFeed(std::string_view document);

/// Checks the signature of what the server sent and reads it. Nothing is read before the signature
/// has held. The notice is `forged`, `malformed` or `oversized`.
[[nodiscard]] std::variant<UpdateFeed, UpdateNotice> openUpdateFeed(std::string_view bytes,
                                                                    const Ed25519PublicKey& key);

/// What the signature of a package is made over.
[[nodiscard]] std::string packageStatement(const UpdateVersion& version,
                                           const UpdatePackage& package);

} // namespace kelvora
