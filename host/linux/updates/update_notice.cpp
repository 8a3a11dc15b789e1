// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_notice.h"

namespace kelvora {

std::string_view nameOf(UpdateNotice notice) {
    switch (notice) {
    case UpdateNotice::systemManaged:
        return "no feed is configured";
    case UpdateNotice::upToDate:
        return "up to date";
    case UpdateNotice::tooOld:
        return "this version is too old for the new package";
    case UpdateNotice::noPackage:
        return "no package for this architecture";
    case UpdateNotice::unreachable:
        return "the server is unreachable";
    case UpdateNotice::timedOut:
        return "the server is too slow";
    case UpdateNotice::serverError:
        return "the server answered with an error";
    case UpdateNotice::untrusted:
        return "the server's certificate is not trusted";
    case UpdateNotice::insecure:
        return "an unacceptable redirection";
    case UpdateNotice::oversized:
        return "too much data";
    case UpdateNotice::forged:
        return "the signature does not hold";
    case UpdateNotice::malformed:
        return "the feed is malformed";
    case UpdateNotice::expired:
        return "the feed has expired";
    case UpdateNotice::replayed:
        return "the feed is older than one seen before";
    case UpdateNotice::damaged:
        return "the package is not the signed one";
    case UpdateNotice::storage:
        return "the package cannot be stored";
    case UpdateNotice::noInstaller:
        return "no installer was found";
    case UpdateNotice::installerFailed:
        return "the installer failed";
    case UpdateNotice::installed:
        return "installed";
    case UpdateNotice::handedOver:
        return "handed over to the installer";
    }
    return {};
}

bool isWorthRetrying(UpdateNotice notice) {
    switch (notice) {
    case UpdateNotice::systemManaged:
    case UpdateNotice::upToDate:
    case UpdateNotice::tooOld:
    case UpdateNotice::noPackage:
    case UpdateNotice::noInstaller:
    case UpdateNotice::installed:
    case UpdateNotice::handedOver:
        return false;
    case UpdateNotice::unreachable:
    case UpdateNotice::timedOut:
    case UpdateNotice::serverError:
    case UpdateNotice::untrusted:
    case UpdateNotice::insecure:
    case UpdateNotice::oversized:
    case UpdateNotice::forged:
    case UpdateNotice::malformed:
    case UpdateNotice::expired:
    case UpdateNotice::replayed:
    case UpdateNotice::damaged:
    case UpdateNotice::storage:
    case UpdateNotice::installerFailed:
        return true;
    }
    return false;
}

} // namespace kelvora
