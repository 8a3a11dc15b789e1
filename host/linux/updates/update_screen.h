// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_notice.h"
#include "host/updater_controller.h"

#include <cstdint>
#include <string>
#include <variant>

namespace kelvora {

// What the update window can show.
struct CheckingScreen {};
struct OfferScreen {
    UpdateItem update;
    std::string installedVersion;
    std::int64_t size = 0; ///< bytes to download
};
struct DownloadingScreen {
    std::string version;
    std::int64_t received = 0; ///< bytes
    std::int64_t size = 0;
};
struct InstallingScreen {
    std::string version;
};
struct NoticeScreen {
    UpdateNotice notice{};
    /// The version that the notice is about: the installed one, or the one on offer.
    std::string version;
    std::string place; ///< of the downloaded package, where the user has to see to it; or empty
};
using UpdateScreen =
    std::variant<CheckingScreen, OfferScreen, DownloadingScreen, InstallingScreen, NoticeScreen>;

/// What a person does in the window.
enum class UpdateAction {
    install, ///< the offer is taken
    retry,   ///< the check is to be made again
    dismiss, ///< cancel, later, close
};

/// How a screen comes before a person.
enum class UpdatePresentation {
    inFront,    ///< with the focus
    asReminder, ///< without it
    inPlace,    ///< where the window is; as a reminder where there is none
};

} // namespace kelvora
