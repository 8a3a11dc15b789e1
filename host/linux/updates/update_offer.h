// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_feed.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kelvora {

/// A newer version that this computer can take.
struct UpdateOffer {
    UpdateVersion version;
    std::string notes;
    std::chrono::sys_seconds expires; ///< of the feed that it came in
    UpdatePackage package;
};

/// Why a feed that is rightly signed must not be listened to at `now`: `expired`, or `replayed`
/// when a feed with a higher serial was seen before; absent when it may be.
[[nodiscard]] std::optional<UpdateNotice>
staleness(const UpdateFeed& feed, std::int64_t highestSerial, std::chrono::sys_seconds now);

/// What `feed` has for a computer with version `installed`. The notice is `upToDate`, `tooOld` or
/// `noPackage`. Nothing that is not newer is ever offered.
[[nodiscard]] std::variant<UpdateOffer, UpdateNotice>
offerOf(const UpdateFeed& feed, const UpdateVersion& installed, std::string_view architecture);

/// What dpkg calls the processor that this program was built for; empty when it is not known here.
[[nodiscard]] std::string debianArchitecture();

} // namespace kelvora
