// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_offer.h"

#include <QString>
#include <QSysInfo>

#include <algorithm>
#include <array>
#include <utility>

namespace kelvora {

std::optional<UpdateNotice> staleness(const UpdateFeed& feed, std::int64_t highestSerial,
                                      std::chrono::sys_seconds now) {
    if (feed.serial < highestSerial) {
        return UpdateNotice::replayed;
    }
    if (feed.expires <= now) {
        return UpdateNotice::expired;
    }
    return std::nullopt;
}

std::variant<UpdateOffer, UpdateNotice>
offerOf(const UpdateFeed& feed, const UpdateVersion& installed, std::string_view architecture) {
    if (feed.version <= installed) {
        return UpdateNotice::upToDate;
    }
    if (feed.minimumVersion && installed < *feed.minimumVersion) {
        return UpdateNotice::tooOld;
    }
    const auto package = std::ranges::find_if(feed.packages, [&](const UpdatePackage& candidate) {
        return candidate.architecture == architecture || candidate.architecture == "all";
    });
    if (package == feed.packages.end()) {
        return UpdateNotice::noPackage;
    }
    return UpdateOffer{
        .version = feed.version, .notes = feed.notes, .expires = feed.expires, .package = *package};
}

std::string debianArchitecture() {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 6> names{{
        {"x86_64", "amd64"},
        {"i386", "i386"},
        {"arm64", "arm64"},
        {"arm", "armhf"},
        {"riscv64", "riscv64"},
        {"power64", "ppc64el"},
    }};
    const std::string built = QSysInfo::buildCpuArchitecture().toStdString();
    const auto* found = std::ranges::find(names, std::string_view(built),
                                          &std::pair<std::string_view, std::string_view>::first);
    return found == names.end() ? std::string() : std::string(found->second);
}

} // namespace kelvora
