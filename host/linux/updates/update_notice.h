// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kelvora {

/// How a check or an installation ended, for the window and the log.
enum class UpdateNotice {
    systemManaged,   ///< no feed is configured: new versions come with the system
    upToDate,        ///< nothing newer is on offer
    tooOld,          ///< the new version cannot replace one as old as this
    noPackage,       ///< the new version has no package for this architecture
    unreachable,     ///< no connection, or it broke off
    timedOut,        ///< the server went silent or was too slow
    serverError,     ///< an HTTP status other than 200
    untrusted,       ///< the server's certificate does not hold
    insecure,        ///< led away from HTTPS, or round in circles
    oversized,       ///< more came than is allowed
    forged,          ///< not signed with the installation's key
    malformed,       ///< signed, but not a feed that this version understands
    expired,         ///< past its date, or this computer's clock is wrong
    replayed,        ///< older than a feed that was seen before
    damaged,         ///< the package is not the one that was signed
    storage,         ///< the package cannot be kept on disk
    noInstaller,     ///< nothing on this system opens a package
    installerFailed, ///< the system's installer did not install it
    installed,       ///< the system's installer says that it is installed
    handedOver,      ///< a program of the system's has the package and goes on by itself
};

/// A word for the log.
[[nodiscard]] std::string_view nameOf(UpdateNotice notice);
/// May the same attempt turn out otherwise later?
[[nodiscard]] bool isWorthRetrying(UpdateNotice notice);

} // namespace kelvora
